#include "native/host/SolarisCpuUtilizationInformation.h"

#include <optional>

#include "native/host/HostInformation.h"
#include "native/host/KernelStatistics.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr const char *cpuUtilInformationClassName =
    "com/kelvo/tarn/providers/solaris/processor/"
    "SolarisCpuUtilizationInformationProvider$SolarisCpuUtilizationData";

constexpr const char *openFailure = "kstat open failed.";

std::optional<CpuUtilInfo> readTicks(const KernelStatistics &statistics, kstat_t *record) {
    constexpr std::size_t used = offsetof(cpu_stat_t, cpu_sysinfo.cpu) + sizeof(cpu_sysinfo_t::cpu);
    const std::optional<cpu_stat_t> data = statistics.read<cpu_stat_t>(record, used);
    if (!data) {
        return std::nullopt;
    }
    const auto &ticks = data->cpu_sysinfo.cpu;
    return CpuUtilInfo{record->ks_instance, static_cast<std::int32_t>(ticks[CPU_USER]),
                       static_cast<std::int32_t>(ticks[CPU_KERNEL]), static_cast<std::int32_t>(ticks[CPU_WAIT]),
                       static_cast<std::int32_t>(ticks[CPU_IDLE])};
}

MadeClass GetClassAndMethod(JNIEnv *env) {
    return {env, cpuUtilInformationClassName, "(IJJJJ)V", Binding::atOnce};
}

jobject makeCpuUtilInfo(CpuUtilInfo info, const MadeClass &result) {
    return result.make(jint{info.cpuId}, jlong{info.userTicks}, jlong{info.kernelTicks}, jlong{info.waitTicks},
                       jlong{info.idleTicks});
}

} // namespace

std::vector<CpuUtilInfo> getCpuUtilInfos() {
    const KernelStatistics statistics(openFailure);
    std::vector<CpuUtilInfo> infos;
    for (kstat_t *record = statistics.first(); record != nullptr; record = record->ks_next) {
        if (!isOfProcessor(*record)) {
            continue;
        }
        if (const std::optional<CpuUtilInfo> info = readTicks(statistics, record)) {
            infos.push_back(*info);
        }
    }
    return infos;
}

CpuUtilInfo getCpuUtilInfo(std::int32_t id) {
    const KernelStatistics statistics(openFailure);
    kstat_t *const record = statistics.lookup(cpuRecords, id, nullptr);
    if (record == nullptr || record->ks_instance != id) { // -1 would match any
        throw NativeError("kstat_lookup failed.");
    }
    const std::optional<CpuUtilInfo> info = readTicks(statistics, record);
    if (!info) {
        throw NativeError("kstat_read failed.");
    }
    return *info;
}

} // namespace tarn

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_enumerateCpuUtilizationInfo(JNIEnv *env, jobject) {
    using namespace tarn;
    return enumerateRecords(env, GetClassAndMethod, getCpuUtilInfos, makeCpuUtilInfo);
}

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getCpuUtilizationInfo(JNIEnv *env, jobject, jint id) {
    using namespace tarn;
    return runThrowingEntry(env, [&] {
        const MadeClass result = GetClassAndMethod(env);
        return makeCpuUtilInfo(getCpuUtilInfo(id), result);
    });
}
