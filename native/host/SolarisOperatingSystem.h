#pragma once

#include <cstdint>

namespace tarn {

/// Physical memory and swap of the host, all in kilobytes (1024 bytes).
struct OsMemoryInfo {
    std::int64_t totalPhysicalKB = 0; ///< sysconf: _SC_PHYS_PAGES
    std::int64_t freePhysicalKB = 0;  ///< unix:0:vminfo freemem over one second; without the record _SC_AVPHYS_PAGES
    std::int64_t totalSwapKB = 0;     ///< unix:0:vminfo swap_avail + swap_resv over one second; without the record 0
    std::int64_t freeSwapKB = 0;      ///< unix:0:vminfo swap_avail over one second; without the record 0
};

/// Samples the host's memory, which takes one second. Raises NativeError "kstat open failed" when the kernel statistics
/// cannot be opened.
OsMemoryInfo GetOSMemoryInfo();

} // namespace tarn
