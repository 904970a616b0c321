#include "platform/replay/FileTree.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "platform/replay/Host.h"

namespace replay {
namespace {

/// Where a slice's entry leads: by default to the minor node of the physical device.
Link linkOf(const Disk &disk, unsigned slice, bool raw) {
    const std::optional<Link> &given = raw ? disk.slices[slice].rawLink : disk.slices[slice].link;
    if (given || !disk.path) {
        return given.value_or(std::nullopt);
    }
    return "../../devices" + *disk.path + ":" + static_cast<char>('a' + disk.place(slice)) + (raw ? ",raw" : "");
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
    files.finish(listings);
}

dev_t Device::number() const {
    return makedev(disk->major, disk->slices[slice].minor.value_or(disk->minor + disk->place(slice)));
}

void FileTree::add(std::string path, bool first, FileNode node) {
    const std::size_t slash = path.rfind('/');
    Listing &listing = directories[slash == 0 ? "/" : path.substr(0, slash)];
    (first ? listing.first : listing.names).push_back(path.substr(slash + 1));
    nodes.emplace(std::move(path), std::move(node));
}

void FileTree::addSlice(const Disk &disk, unsigned slice) {
    const std::string &name = disk.slices[slice].name;
    for (const std::string &directory : disk.directories) {
        const bool raw = directory == description::rawDirectory;
        FileNode node{linkOf(disk, slice, raw), Device{&disk, slice, raw}, true};
        if (node.link) {
            devicesByLink.emplace(*node.link, *node.device);
        }
        add(directory + "/" + disk.name + name, false, std::move(node));
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

void FileTree::finish(const ByText<std::vector<std::string>> &listings) {
    for (const auto &[path, names] : listings) {
        directories[path]; // is there, even when nothing is in it
    }
    for (auto &[path, listing] : directories) {
        std::vector<std::string> names = {".", ".."};
        if (const auto given = listings.find(path); given != listings.end()) {
            std::ranges::copy(given->second, std::back_inserter(names));
        }
        const std::unordered_set<std::string> listed(names.begin(), names.end());
        for (auto *part : {&listing.first, &listing.names}) {
            std::ranges::copy_if(*part, std::back_inserter(names),
                                 [&](const std::string &name) { return !listed.contains(name); });
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
        const std::string inMode = std::string(call) + (mode == O_RDWR ? " O_RDWR" : " O_RDONLY");
        const std::string withFlag = (openFlags & O_NDELAY) != 0 ? inMode + "|O_NDELAY" : inMode;
        for (const std::string &name : {withFlag, inMode}) {
            if (const auto found = disk.fails.find(name); found != disk.fails.end()) {
                return found->second;
            }
        }
    }
    return failureOf(disk, call);
}

} // namespace replay
