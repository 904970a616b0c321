#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <sys/types.h>

#include "description/FileIndex.h"
#include "description/Host.h"

namespace replay {

using description::Disk;
using description::Entry;
using description::Link;

/// A slice of a disk, as a block device under /dev/dsk or as a character device under /dev/rdsk.
struct Device {
    const Disk *disk;
    unsigned slice;
    bool raw;

    dev_t number() const;
};

/// What stands at one path. Without a device it is a plain file, or a link that leads nowhere.
struct FileNode {
    std::size_t file; // its index
    bool isLink;
    std::optional<Device> device; // itself, or what its link leads to
    bool ofDisk;                  // an entry that the disk accounts for
};

/// The device files of a host by their paths, made once when the host is loaded. The host has to stay where it is.
class FileTree {
public:
    explicit FileTree(const description::Host &host);

    /// Nothing when nothing stands at the path.
    std::optional<FileNode> find(std::string_view path) const;

    /// The text of the link that stands there.
    Link linkOf(const FileNode &node) const;

    /// The files in a directory in the order in which it lists them, after "." and "..". Null when there is none.
    const std::vector<std::uint32_t> *directory(std::string_view path) const;

    std::string name(std::size_t file) const {
        return index.name(file);
    }

    /// The disk of a mounted slice. Null when nothing is mounted from that device.
    const Disk *mountedFrom(dev_t device) const;

private:
    Device deviceOf(const description::FileIndex::File &file) const;
    void fillDirectories();
    void followLinks();
    void findMounted();

    const description::Host &described;
    description::FileIndex index;
    std::unordered_map<std::string_view, std::vector<std::uint32_t>> directories;
    std::vector<std::optional<Device>> entryDevices; // that the links of the entries lead to
    std::unordered_map<dev_t, const Disk *> mounted;
};

} // namespace replay
