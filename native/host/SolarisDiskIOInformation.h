#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn {

/// I/O counters of one disk since boot, from its kstat_io record.
struct diskIOData {
    std::string kstatName;           ///< the record's name, which is the driver's instance name, such as "sd0"
    std::string deviceName;          ///< name under "/dev/dsk", such as "c0t0d0"; empty when there is no slice 0
    std::uint64_t bytesRead = 0;     ///< nread
    std::uint64_t bytesWritten = 0;  ///< nwritten
    std::int64_t runTime = 0;        ///< rtime: nanoseconds in service
    std::int64_t waitLastUpdate = 0; ///< wlastupdate: when the wait queue last changed, in nanoseconds
};

/// The disks in the order of the kernel's statistics chain; one whose record cannot be read is left out. Raises
/// NativeError "kstat open failed.".
std::vector<diskIOData> getDiskIOData();

/// The disk `name`, such as "c0t0d0". Raises NativeError "kstat open failed.", or DiskIONameNotFound when there is no
/// such disk or the kernel keeps no I/O record of it.
diskIOData getDiskIOData(const std::string &name);

/// As getDiskIOData(name), with nothing in place of DiskIONameNotFound.
std::optional<diskIOData> findDiskIOData(const std::string &name);

} // namespace tarn
