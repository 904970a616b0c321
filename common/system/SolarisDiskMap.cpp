#include "common/system/SolarisDiskMap.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <tuple>

#include "common/system/Directory.h"
#include "common/system/DiskDevices.h"
#include "common/system/ReadLink.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr std::string_view firstSlice = "s0";
constexpr unsigned minorsPerDiskShift = 3; // a disk driver gives each instance 8 minor numbers, one per slice

} // namespace

std::optional<std::string> getDriver(const char *path) {
    LinkBuffer buffer;
    const std::optional<std::string_view> target = readLink(path, buffer);
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
    std::string path = std::string(dev_dsk) + "/";
    const std::size_t nameAt = path.size();
    while (const char *const entryName = directory.next()) {
        if (std::string_view(entryName).find(firstSlice) == std::string_view::npos) {
            continue;
        }
        path.replace(nameAt, std::string::npos, entryName);
        struct stat status {};
        if (solaris::stat(path.c_str(), &status) != 0) {
            continue;
        }
        if (const std::optional<std::string> driverName = getDriver(path.c_str())) {
            mapdisk(minor(status.st_rdev), entryName, *driverName);
        }
    }
}

void SolarisDiskMap::mapdisk(unsigned long minorNumber, std::string_view entryName, std::string_view driverName) {
    const std::string_view diskName = entryName.substr(0, entryName.find('s'));
    std::array<char, 20> number; // of any 64 bits
    const auto numberEnd = std::to_chars(number.begin(), number.end(), minorNumber >> minorsPerDiskShift).ptr;
    const std::size_t at = texts.size();
    texts.append(diskName).append(driverName).append(number.data(), numberEnd);
    const std::size_t instanceAt = at + diskName.size();
    disks.push_back({{at, diskName.size()}, {instanceAt, texts.size() - instanceAt}});
}

std::string_view SolarisDiskMap::find(Direction &direction, Name key, std::string_view wanted, Name value) const {
    // Shorter names first: drivers' instances are numbered, and mostly come in that order.
    const auto rank = [&](const Disk &disk) { return std::tuple((disk.*key).length, text(disk.*key)); };
    if (!direction) {
        direction = disks;
        const auto place = [&](const Disk &disk) { return std::tuple_cat(rank(disk), std::tuple(disk.name.at)); };
        if (!std::ranges::is_sorted(*direction, {}, place)) {
            std::ranges::sort(*direction, {}, place);
        }
    }
    const auto end = std::ranges::upper_bound(*direction, std::tuple(wanted.size(), wanted), {}, rank);
    if (end == direction->begin() || text(end[-1].*key) != wanted) {
        return {};
    }
    return text(end[-1].*value);
}

} // namespace tarn
