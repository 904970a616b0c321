#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

/// A mounted UFS or NFS file system. The four sizes are 0 unless they are asked for and statvfs64 gives them.
struct LogicalDisk {
    std::string device;               ///< mnttab: block device or remote path
    std::string mountPoint;           ///< the name it was asked for by
    std::string fileSystemType;       ///< mnttab: "ufs" or "nfs"
    std::uint64_t totalBytes = 0;     ///< statvfs64: f_blocks * f_frsize
    std::uint64_t availableBytes = 0; ///< statvfs64: f_bavail * f_frsize, what unprivileged users may fill
    std::uint64_t freeBytes = 0;      ///< statvfs64: f_bfree * f_frsize
    std::uint64_t blockSize = 0;      ///< statvfs64: f_bsize, in bytes
};

/// The mount points of all UFS and NFS file systems, in mount-table order, up to the first malformed entry. Empty when
/// the mount table cannot be opened.
std::vector<std::string> ListLogicalDisks();

/// The first UFS or NFS file system mounted exactly at `name`. Raises MountTableError when the mount table cannot be
/// opened, LogicalDiskNotFound when it has no such entry before its end or a malformed entry.
LogicalDisk GetLogicalDisk(const std::string &name, bool withSizes);

} // namespace tarn
