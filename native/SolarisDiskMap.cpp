#include "native/SolarisDiskMap.h"

#include <algorithm>
#include <iterator>

#include "common/Directory.h"
#include "common/ReadLink.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr const char *dev_dsk = "/dev/dsk";
constexpr std::string_view firstSlice = "s0";
constexpr unsigned minorsPerDiskShift = 3; // a disk driver gives each instance 8 minor numbers, one per slice

} // namespace

std::optional<std::string> getDriver(const char *path) {
    const std::optional<std::string> target = readLink(path);
    if (!target) {
        return std::nullopt;
    }
    std::string_view node = *target;
    node.remove_prefix(node.rfind('/') + 1); // the whole target when it has no slash
    node = node.substr(0, node.find('@'));
    std::string driverName;
    std::ranges::copy_if(node, std::back_inserter(driverName), [](char c) { return c >= 'a' && c <= 'z'; });
    return driverName;
}

SolarisDiskMap::SolarisDiskMap() {
    initDiskMap();
}

void SolarisDiskMap::initDiskMap() {
    Directory directory(dev_dsk);
    while (const char *const entryName = directory.next()) {
        if (std::string_view(entryName).find(firstSlice) == std::string_view::npos) {
            continue;
        }
        const std::string path = std::string(dev_dsk) + "/" + entryName;
        struct stat status {};
        if (solaris::stat(path.c_str(), &status) != 0) {
            continue;
        }
        if (const std::optional<std::string> driverName = getDriver(path.c_str())) {
            mapdisk(minor(status.st_rdev), entryName, *driverName);
        }
    }
}

void SolarisDiskMap::mapdisk(unsigned long minorNumber, std::string_view entryName, const std::string &driverName) {
    const std::string diskName(entryName.substr(0, entryName.find('s')));
    const std::string instanceName = driverName + std::to_string(minorNumber >> minorsPerDiskShift);
    deviceToInstance[diskName] = instanceName;
    instanceToDevice[instanceName] = diskName;
}

const std::string &SolarisDiskMap::getSDxNameFromMap(const std::string &diskName) {
    return deviceToInstance[diskName];
}

const std::string &SolarisDiskMap::getDeviceIdFromMap(const std::string &instanceName) {
    return instanceToDevice[instanceName];
}

} // namespace tarn
