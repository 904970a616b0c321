#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/solaris.h"

namespace tarn {

inline constexpr const char *mountTablePath = "/etc/mnttab";

/// The kinds that the agent's own calls tell of.
inline bool isOfLogicalDisk(std::string_view fileSystemType) {
    return fileSystemType == "ufs" || fileSystemType == "nfs";
}

/// The kinds of which the agent's own calls say nothing, and the inventory does.
inline bool isOfInventory(std::string_view fileSystemType) {
    return fileSystemType == "zfs" || fileSystemType == "vxfs";
}

/// The system's table of mounted file systems, read from its start and closed with its scope.
class MountTable {
public:
    MountTable() : file(solaris::fopen(mountTablePath, "r")) {
    }
    ~MountTable() {
        if (isOpen()) {
            solaris::fclose(file);
        }
    }
    MountTable(const MountTable &) = delete;
    MountTable &operator=(const MountTable &) = delete;

    bool isOpen() const {
        return file != nullptr;
    }

    /// The next entry, valid until the next call. getmntent's result: 0, -1 at the end, or what is wrong with a line.
    int next(const mnttab *&read) {
        read = &entry;
        return solaris::getmntent(file, &entry);
    }

    /// What is left of it, as text. False when its end cannot be read, with errno.
    bool readText(std::string &text) {
        std::array<char, 4096> part;
        while (const std::size_t size = std::fread(part.data(), 1, part.size(), file)) {
            text.append(part.data(), size);
        }
        return std::ferror(file) == 0;
    }

    /// The next UFS or NFS entry, valid until the next call; null at the end, which a malformed entry is too.
    const mnttab *nextLogicalDisk() {
        return nextOf(isOfLogicalDisk);
    }

    /// The like for the entries whose kind passes.
    template <class Passes>
    const mnttab *nextOf(const Passes &passes) {
        while (solaris::getmntent(file, &entry) == 0) {
            if (passes(std::string_view(entry.mnt_fstype))) {
                return &entry;
            }
        }
        return nullptr;
    }

private:
    FILE *file;
    mnttab entry{};
};

} // namespace tarn
