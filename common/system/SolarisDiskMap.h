#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The disks under "/dev/dsk" by either of their names: the one there (such as "c0t0d0") and that of its driver's
/// instance, after which the kernel names the disk's statistics (such as "sd0"). Scans the directory once, when it is
/// made. Each direction is made when it is first asked for: most callers need only one.
class SolarisDiskMap {
public:
    SolarisDiskMap();

    /// The instance name of the disk; empty when there is no such disk. Where several entries of the directory have the
    /// same disk name, that of the last.
    std::string getSDxNameFromMap(std::string_view diskName) {
        return std::string(find(deviceToInstance, &Disk::name, diskName, &Disk::instance));
    }

    /// The disk name of the instance, likewise.
    std::string getDeviceIdFromMap(std::string_view instanceName) {
        return std::string(find(instanceToDevice, &Disk::instance, instanceName, &Disk::name));
    }

private:
    /// Where in `texts` something stands.
    struct Text {
        std::size_t at;
        std::size_t length;
    };
    struct Disk {
        Text name;
        Text instance;
    };
    using Name = Text Disk::*;

    /// The disks in the order of their keys; those with the same key in the directory's order. Nothing until it is made.
    using Direction = std::optional<std::vector<Disk>>;

    void initDiskMap();
    void mapdisk(unsigned long minorNumber, std::string_view entryName, std::string_view driverName);
    std::string_view find(Direction &direction, Name key, std::string_view wanted, Name value) const;
    std::string_view text(const Text &text) const {
        return std::string_view(texts).substr(text.at, text.length);
    }

    std::string texts;
    std::vector<Disk> disks; // in the directory's order
    Direction deviceToInstance;
    Direction instanceToDevice;
};

/// Name of the driver of the device that `path` links to: the lower-case letters of the target's last component up to
/// its at sign. Nothing when `path` is no link that can be read.
std::optional<std::string> getDriver(const char *path);

} // namespace tarn
