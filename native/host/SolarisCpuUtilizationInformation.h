#pragma once

#include <cstdint>
#include <vector>

namespace tarn {

/// Clock ticks that one processor has spent since boot, from its cpu_stat record. The kernel counts them in unsigned 32
/// bits; here, and from here on, the same bits are read as signed.
struct CpuUtilInfo {
    std::int32_t cpuId = 0;       ///< the record's instance number, which is the processor id
    std::int32_t userTicks = 0;   ///< cpu_sysinfo.cpu[CPU_USER]
    std::int32_t kernelTicks = 0; ///< cpu_sysinfo.cpu[CPU_KERNEL]
    std::int32_t waitTicks = 0;   ///< cpu_sysinfo.cpu[CPU_WAIT]
    std::int32_t idleTicks = 0;   ///< cpu_sysinfo.cpu[CPU_IDLE]
};

/// All processors, in the order of the kernel's statistics chain; one whose record cannot be read is left out. Raises
/// NativeError "kstat open failed.".
std::vector<CpuUtilInfo> getCpuUtilInfos();

/// One processor. Raises NativeError "kstat open failed.", "kstat_lookup failed." when there is no such processor, or
/// "kstat_read failed.".
CpuUtilInfo getCpuUtilInfo(std::int32_t id);

} // namespace tarn
