#pragma once

#include <kstat.h>

#include <string>
#include <string_view>

#include "common/system/FieldText.h"

// Which kernel statistics are read.

namespace tarn {

/// The module of the processors' records, and what their names begin with.
inline constexpr const char *cpuRecords = "cpu_stat";

// The kernel's paging counters.
inline constexpr const char *pagingModule = "unix";
inline constexpr const char *pagingRecord = "vminfo";

inline bool isOfDisk(const kstat_t &record) {
    return record.ks_type == KSTAT_TYPE_IO && fieldText(record.ks_class) == "disk";
}

/// The disk driver's counts of errors, and what it knows of the device.
inline bool isOfDeviceErrors(const kstat_t &record) {
    return record.ks_type == KSTAT_TYPE_NAMED && fieldText(record.ks_class) == "device_error";
}

inline bool isOfProcessor(const kstat_t &record) {
    return fieldText(record.ks_name).starts_with(cpuRecords);
}

/// Whether anything here looks at the record, even if it turns out not to be readable.
inline bool isOfInterest(const kstat_t &record) {
    return isOfDisk(record) || isOfDeviceErrors(record) || isOfProcessor(record) ||
           fieldText(record.ks_module) == cpuRecords || fieldText(record.ks_name) == pagingRecord;
}

/// Such as "sd:0:sd0".
inline std::string nameOf(const kstat_t &record) {
    return std::string(fieldText(record.ks_module)) + ":" + std::to_string(record.ks_instance) + ":" +
           std::string(fieldText(record.ks_name));
}

} // namespace tarn
