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

dev_t Device::number() const {
    return makedev(disk->major, disk->minor + slice);
}

bool FileTree::add(std::string path, bool first, FileNode node) {
    const std::size_t slash = path.rfind('/');
    Listing &listing = directories[slash == 0 ? "/" : path.substr(0, slash)];
    (first ? listing.first : listing.names).push_back(path.substr(slash + 1));
    return nodes.emplace(std::move(path), std::move(node)).second;
}

bool FileTree::addSlice(const Disk &disk, unsigned slice) {
    const std::string &name = disk.slices[slice];
    bool added = true;
    for (const bool raw : {false, true}) {
        FileNode node{std::nullopt, Device{&disk, slice, raw}, true};
        if (disk.path) {
            node.link = linkText(disk, slice, raw);
            devicesByLink.emplace(*node.link, *node.device);
        }
        added = add((raw ? "/dev/rdsk/" : "/dev/dsk/") + disk.name + name, false, std::move(node)) && added;
    }
    if (std::ranges::find(disk.mounted, name) != disk.mounted.end()) {
        mounted.emplace(Device{&disk, slice, false}.number(), &disk);
    }
    return added;
}

bool FileTree::addEntry(const Entry &entry) {
    FileNode node{entry.link, std::nullopt, false};
    if (entry.link) {
        if (const auto found = devicesByLink.find(*entry.link); found != devicesByLink.end()) {
            node.device = found->second;
        }
    }
    return add(entry.path, entry.position == positionFirst, std::move(node));
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

int Disk::failure(std::string_view call) const {
    const auto found = fails.find(call);
    return found == fails.end() ? 0 : found->second;
}

int Disk::failure(std::string_view call, int openFlags) const {
    if (fails.empty()) {
        return 0;
    }
    const int mode = openFlags & O_ACCMODE;
    if (mode == O_RDWR || mode == O_RDONLY) {
        if (const int error = failure(std::string(call) + (mode == O_RDWR ? " O_RDWR" : " O_RDONLY")); error != 0) {
            return error;
        }
    }
    return failure(call);
}

} // namespace replay
