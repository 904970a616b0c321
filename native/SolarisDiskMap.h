#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// Both directions between the names of a disk under "/dev/dsk" (such as "c0t0d0") and of its driver's instance, after
/// which the kernel names the disk's statistics (such as "sd0"). Scans the directory once, when it is made.
class SolarisDiskMap {
public:
    SolarisDiskMap();

    /// Instance name of the disk. A disk that is not in the map enters it with an empty instance name.
    const std::string &getSDxNameFromMap(const std::string &diskName);

    /// Disk name of the instance. An instance that is not in the map enters it with an empty disk name.
    const std::string &getDeviceIdFromMap(const std::string &instanceName);

    /// Where two entries of the directory gave the same key, the later one's value.
    std::map<std::string, std::string> deviceToInstance;
    std::map<std::string, std::string> instanceToDevice;

private:
    void initDiskMap();
    void mapdisk(unsigned long minorNumber, std::string_view entryName, const std::string &driverName);
};

/// Name of the driver of the device that `path` links to: the lower-case letters of the target's last component up to
/// its at sign. Nothing when `path` is no link that can be read.
std::optional<std::string> getDriver(const char *path);

} // namespace tarn
