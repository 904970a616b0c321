#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The disks under "/dev/dsk" by either of their names: the one there (such as "c0t0d0") and that of its driver's
/// instance, after which the kernel names the disk's statistics (such as "sd0"). Scans the directory once, when it is
/// made.
class SolarisDiskMap {
public:
    /// The name that disks are going to be found by. The other direction is not made.
    enum class Key { diskName, instanceName };

    explicit SolarisDiskMap(Key nameToFindBy);

    /// The other name of the disk; empty when there is no such disk. Where several entries of the directory have the same
    /// key, that of the last. Valid as long as the map.
    std::string_view find(std::string_view name) const;

private:
    /// Where in `texts` a disk's two names stand, one behind the other.
    struct Disk {
        std::size_t keyAt;
        std::size_t keyLength;
        std::size_t valueAt;
        std::size_t valueLength;
    };

    void initDiskMap();
    void mapdisk(unsigned long minorNumber, std::string_view entryName, std::string_view driverName);
    std::string_view key(const Disk &disk) const {
        return std::string_view(texts).substr(disk.keyAt, disk.keyLength);
    }

    const Key foundBy;
    std::string texts;
    std::vector<Disk> disks; // in the order of their keys; those with the same key in the directory's order
};

/// Name of the driver of the device that `path` links to: the lower-case letters of the target's last component up to
/// its at sign. Nothing when `path` is no link that can be read.
std::optional<std::string> getDriver(const char *path);

} // namespace tarn
