#include "common/hba/library/Messages.h"

#include <array>
#include <cstdio>

#include "common/hba/library/Limits.h"

namespace tarn {

const char *StatusString(HBA_STATUS status) {
    static constexpr std::array texts{
        "OK",
        "Error",
        "Not supported",
        "Invalid handle",
        "Invalid argument",
        "Illegal WWN",
        "Illegal index",
        "More data available",
        "Stale data",
        "SCSI check condition",
        "Adapter busy or reserved",
        "HBA request timed out",
        "HBA has been removed or deactivated",
    };
    return status < texts.size() ? texts[status] : "";
}

const char *BadStatus(const char *callName, HBA_STATUS status, HBA_UINT32 adapterIndex, const char *adapterName) {
    thread_local std::array<char, 500> line;
    static_cast<void>(std::snprintf(line.data(), line.size(), "HBA_%s call returned %d (%s) for adapter %u (%s)",
                                    callName, static_cast<int>(status), StatusString(status), adapterIndex,
                                    adapterName)); // the longest fits
    return line.data();
}

std::string unableToOpen(HBA_UINT32 adapterIndex, const char *adapterName, HBA_STATUS status) {
    return "Unable to open HBA adapter " + std::to_string(adapterIndex) + " (" + adapterName + ") -- status is " +
           std::to_string(static_cast<int>(status)) + " (" + StatusString(status) + ") (check ownership)";
}

std::string tooMany(const std::string &what, HBA_UINT32 count, const std::string &reporter, HBA_UINT32 maximum) {
    return "Ignoring the " + std::to_string(count) + " " + what + " that " + reporter + " reports -- more than " +
           std::to_string(maximum) + " cannot be right";
}

std::string discoveredPortsOf(HBA_UINT32 port) {
    return "discovered ports of port " + std::to_string(port);
}

std::string tooManyTogether(HBA_UINT32 port, HBA_UINT32 count, const std::string &reporter) {
    return "Ignoring the " + std::to_string(count) + " " + discoveredPortsOf(port) + " that " + reporter +
           " reports, and those of later ports likewise -- more than " +
           std::to_string(maximumDiscoveredPortsTogether) + " in all cannot be right";
}

std::string adapterText(HBA_UINT32 adapterIndex, const char *adapterName) {
    return "HBA adapter " + std::to_string(adapterIndex) + " (" + adapterName + ")";
}

} // namespace tarn
