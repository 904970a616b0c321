#include "platform/replay/FileTree.h"

#include <algorithm>
#include <utility>

namespace replay {
namespace {

using description::FileIndex;

/// Where a slice's entry leads: by default to the minor node of the physical device.
Link linkOfSlice(const Disk &disk, unsigned slice, bool raw) {
    const std::optional<Link> &given = raw ? (*disk.slices)[slice].rawLink : (*disk.slices)[slice].link;
    if (given || !disk.path) {
        return given.value_or(std::nullopt);
    }
    return "../../devices" + *disk.path + ":" + static_cast<char>('a' + disk.place(slice)) + (raw ? ",raw" : "");
}

bool isLinkOfSlice(const Disk &disk, unsigned slice, bool raw) {
    const std::optional<Link> &given = raw ? (*disk.slices)[slice].rawLink : (*disk.slices)[slice].link;
    return given ? given->has_value() : disk.path.has_value();
}

} // namespace

dev_t Device::number() const {
    return makedev(disk->major, (*disk->slices)[slice].minor.value_or(disk->minor + disk->place(slice)));
}

FileTree::FileTree(const description::Host &host) : described(host), index(host), entryDevices(host.entries.size()) {
    fillDirectories();
    followLinks();
    findMounted();
}

Device FileTree::deviceOf(const FileIndex::File &file) const {
    return {&*described.disks[file.owner], file.slice, file.kind == FileIndex::rawDevice};
}

/// First come those that a listing names, then the entries at the first position, then what else there is.
void FileTree::fillDirectories() {
    const std::vector<FileIndex::File> &files = index.files();
    std::vector<bool> isListed(files.size());
    const auto list = [&](std::size_t file) {
        if (!isListed[file]) {
            isListed[file] = true;
            directories[index.directory(file)].push_back(static_cast<std::uint32_t>(file));
        }
    };
    for (const auto &[path, names] : described.listings) {
        directories[path]; // is there, even when nothing is in it
        for (const std::string &name : names) {
            if (const std::optional<std::size_t> file = index.find(path, name)) {
                list(*file);
            }
        }
    }
    for (const bool atFirst : {true, false}) {
        for (std::size_t file = 0; file < files.size(); ++file) {
            if (!atFirst || (files[file].kind == FileIndex::entry &&
                             described.entries[files[file].owner].position == description::positionFirst)) {
                list(file);
            }
        }
    }
}

/// An entry leads to a device when its link is the text of a slice's.
void FileTree::followLinks() {
    std::unordered_map<std::string_view, std::optional<Device>> devices;
    for (const Entry &entry : described.entries) {
        if (entry.link) {
            devices[*entry.link];
        }
    }
    for (const FileIndex::File &file : index.files()) {
        if (devices.empty() || file.kind == FileIndex::entry) {
            break; // behind the disks
        }
        const Device device = deviceOf(file);
        const Link link = linkOfSlice(*device.disk, device.slice, device.raw);
        if (const auto found = link ? devices.find(*link) : devices.end(); found != devices.end() && !found->second) {
            found->second = device;
        }
    }
    for (std::size_t i = 0; i < entryDevices.size(); ++i) {
        if (const Link &link = described.entries[i].link) {
            entryDevices[i] = devices[*link];
        }
    }
}

void FileTree::findMounted() {
    for (const Disk &disk : described.disks) {
        for (unsigned slice = 0; slice < disk.slices->size() && !disk.mounted.empty(); ++slice) {
            if (std::ranges::find(disk.mounted, (*disk.slices)[slice].name) != disk.mounted.end()) {
                mounted.emplace(Device{&disk, slice, false}.number(), &disk);
            }
        }
    }
}

std::optional<FileNode> FileTree::find(std::string_view path) const {
    const std::optional<std::size_t> found = index.find(path);
    if (!found) {
        return std::nullopt;
    }
    const FileIndex::File &file = index.files()[*found];
    if (file.kind == FileIndex::entry) {
        return FileNode{*found, described.entries[file.owner].link.has_value(), entryDevices[file.owner], false};
    }
    const Device device = deviceOf(file);
    return FileNode{*found, isLinkOfSlice(*device.disk, device.slice, device.raw), device, true};
}

Link FileTree::linkOf(const FileNode &node) const {
    return node.ofDisk ? linkOfSlice(*node.device->disk, node.device->slice, node.device->raw)
                       : described.entries[index.files()[node.file].owner].link;
}

const std::vector<std::uint32_t> *FileTree::directory(std::string_view path) const {
    const auto found = directories.find(path);
    return found == directories.end() ? nullptr : &found->second;
}

const Disk *FileTree::mountedFrom(dev_t device) const {
    const auto found = mounted.find(device);
    return found == mounted.end() ? nullptr : found->second;
}

} // namespace replay
