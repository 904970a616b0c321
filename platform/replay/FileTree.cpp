#include "platform/replay/FileTree.h"

#include <algorithm>
#include <utility>

#include "platform/replay/Host.h"

namespace replay {
namespace {

/// Where a slice's entry leads: the minor node of the physical device.
std::string linkText(const Disk &disk, unsigned slice, bool raw) {
    return "../../devices" + *disk.path + ":" + static_cast<char>('a' + slice) + (raw ? ",raw" : "");
}

} // namespace

Host::Host(description::Host described) : description::Host(std::move(described)) {
    for (const Disk &disk : disks) {
        for (unsigned slice = 0; slice < disk.slices.size(); ++slice) {
            files.addSlice(disk, slice);
        }
    }
    for (const Entry &entry : entries) {
        files.addEntry(entry);
    }
    files.finish();
}

dev_t Device::number() const {
    return makedev(disk->major, disk->minor + slice);
}

void FileTree::add(std::string path, bool first, FileNode node) {
    const std::size_t slash = path.rfind('/');
    Listing &listing = directories[slash == 0 ? "/" : path.substr(0, slash)];
    (first ? listing.first : listing.names).push_back(path.substr(slash + 1));
    nodes.emplace(std::move(path), std::move(node));
}

void FileTree::addSlice(const Disk &disk, unsigned slice) {
    const std::string &name = disk.slices[slice];
    for (const bool raw : {false, true}) {
        FileNode node{std::nullopt, Device{&disk, slice, raw}, true};
        if (disk.path) {
            node.link = linkText(disk, slice, raw);
            devicesByLink.emplace(*node.link, *node.device);
        }
        add((raw ? "/dev/rdsk/" : "/dev/dsk/") + disk.name + name, false, std::move(node));
    }
    if (std::ranges::find(disk.mounted, name) != disk.mounted.end()) {
        mounted.emplace(Device{&disk, slice, false}.number(), &disk);
    }
}

void FileTree::addEntry(const Entry &entry) {
    FileNode node{entry.link, std::nullopt, false};
    if (entry.link) {
        if (const auto found = devicesByLink.find(*entry.link); found != devicesByLink.end()) {
            node.device = found->second;
        }
    }
    add(entry.path, entry.position == description::positionFirst, std::move(node));
}

void FileTree::finish() {
    for (auto &[path, listing] : directories) {
        std::vector<std::string> names = {".", ".."};
        for (auto *part : {&listing.first, &listing.names}) {
            std::ranges::move(*part, std::back_inserter(names));
        }
        listing = {{}, std::move(names)};
    }
    devicesByLink.clear();
}

const FileNode *FileTree::find(std::string_view path) const {
    const auto found = nodes.find(path);
    return found == nodes.end() ? nullptr : &found->second;
}

const std::vector<std::string> *FileTree::directory(std::string_view path) const {
    const auto found = directories.find(path);
    return found == directories.end() ? nullptr : &found->second.names;
}

const Disk *FileTree::mountedFrom(dev_t device) const {
    const auto found = mounted.find(device);
    return found == mounted.end() ? nullptr : found->second;
}

int failureOf(const Disk &disk, std::string_view call) {
    const auto found = disk.fails.find(call);
    return found == disk.fails.end() ? 0 : found->second;
}

int failureOf(const Disk &disk, std::string_view call, int openFlags) {
    if (disk.fails.empty()) {
        return 0;
    }
    const int mode = openFlags & O_ACCMODE;
    if (mode == O_RDWR || mode == O_RDONLY) {
        if (const int error = failureOf(disk, std::string(call) + (mode == O_RDWR ? " O_RDWR" : " O_RDONLY"));
            error != 0) {
            return error;
        }
    }
    return failureOf(disk, call);
}

} // namespace replay
