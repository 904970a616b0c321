#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <sys/types.h>

#include "description/Host.h"

namespace replay {

using description::ByText;
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

/// What stands at one path. Without a link and without a device it is a plain file.
struct FileNode {
    Link link;
    std::optional<Device> device; // itself, or what its link leads to
    bool ofDisk;                  // an entry that the disk accounts for
};

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>()(text);
    }
};

template <class Value>
using ByPath = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

/// The device files of a host by their paths, made once when the host is loaded.
class FileTree {
public:
    /// Adds the entries of a slice in /dev/dsk and /dev/rdsk.
    void addSlice(const Disk &disk, unsigned slice);

    /// Adds an entry that no disk accounts for, after every slice.
    void addEntry(const Entry &entry);

    /// Null when nothing stands at the path.
    const FileNode *find(std::string_view path) const;

    /// The names in a directory in the order in which it lists them, "." and ".." first. Null when there is none.
    const std::vector<std::string> *directory(std::string_view path) const;

    /// The disk of a mounted slice. Null when nothing is mounted from that device.
    const Disk *mountedFrom(dev_t device) const;

    /// Puts the listings into their final order, once everything is added: first the names that `listings` has of a
    /// directory.
    void finish(const ByText<std::vector<std::string>> &listings);

private:
    struct Listing {
        std::vector<std::string> first;
        std::vector<std::string> names;
    };

    void add(std::string path, bool first, FileNode node);

    ByPath<FileNode> nodes;
    ByPath<Listing> directories;
    ByPath<Device> devicesByLink;
    std::unordered_map<dev_t, const Disk *> mounted;
};

} // namespace replay
