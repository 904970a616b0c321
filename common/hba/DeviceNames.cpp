#include "common/hba/DeviceNames.h"

#include <charconv>
#include <optional>

#include "common/system/Directory.h"
#include "common/system/DiskDevices.h"
#include "common/system/FieldText.h"
#include "common/system/ReadLink.h"

namespace tarn {
namespace {

constexpr std::string_view s_devices = "/devices/";
constexpr std::string_view s_dev_dsk_ = "/dev/dsk/";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The number of the first raw disk that is a minor node of that device and has one.
HBA_UINT32 findScsiBusNumber(std::string_view path) {
    HBA_UINT32 number = 0;
    bool ok = false;
    Directory directory(s_dev_rdsk);
    while (const char *const name = ok ? nullptr : directory.next()) {
        if (name[0] == 'c' && deviceDerivesFrom(name, path)) {
            number = parseScsiBusNumber(name, ok);
        }
    }
    return number;
}

} // namespace

HBA_UINT32 divineScsiBusNumber(const HBA_FcpScsiEntry &entry) {
    if (entry.ScsiId.ScsiBusNumber != 0) {
        return entry.ScsiId.ScsiBusNumber;
    }
    const std::string_view name = fieldText(entry.ScsiId.OSDeviceName);
    bool ok = false;
    HBA_UINT32 number = parseScsiBusNumber(name, ok);
    if (!ok && name.starts_with(s_dev_dsk_)) {
        number = parseScsiBusNumber(name.substr(s_dev_dsk_.size()), ok);
    }
    if (!ok && name.starts_with(s_devices)) {
        number = findScsiBusNumber(name);
    }
    return number;
}

HBA_UINT32 parseScsiBusNumber(std::string_view name, bool &ok) {
    if (name.size() < 2 || name[0] != 'c' || !isDigit(name[1])) {
        return 0;
    }
    HBA_UINT32 number = 0;
    std::size_t next = 1;
    for (; next < name.size() && isDigit(name[next]); ++next) {
        number = number * 10 + static_cast<HBA_UINT32>(name[next] - '0');
    }
    if (next == name.size() || name[next] != 't') {
        return 0;
    }
    ok = true;
    return number;
}

bool deviceDerivesFrom(std::string_view name, std::string_view path) {
    LinkBuffer buffer;
    const std::optional<std::string_view> link = readLink(devicePath(name).c_str(), buffer);
    if (!link) {
        return false;
    }
    const std::size_t begin = link->find(s_devices);
    if (begin == std::string_view::npos) {
        return false;
    }
    const std::string_view device = link->substr(begin);
    return device.size() > path.size() && device.starts_with(path) && device[path.size()] == ':';
}

void leadvilleName(std::string_view osDeviceName, char *buffer) {
    std::string_view name = osDeviceName.substr(osDeviceName.rfind('/') + 1);
    name = name.substr(0, name.find("s2"));
    buffer[name.copy(buffer, deviceNameSize - 1)] = '\0';
}

void numberedName(HBA_UINT32 bus, HBA_UINT32 target, HBA_UINT32 lun, char *buffer) {
    char *next = buffer;
    const auto append = [&](char letter, HBA_UINT32 number) {
        *next++ = letter;
        next = std::to_chars(next, buffer + deviceNameSize, static_cast<int>(number)).ptr;
    };
    append('c', bus);
    append('t', target);
    append('d', lun);
    *next = '\0';
}

} // namespace tarn
