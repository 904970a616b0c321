#include "native/host/SolarisDiskIOInformation.h"

#include <algorithm>
#include <utility>

#include "common/jni/JniString.h"
#include "common/system/FieldText.h"
#include "common/system/SolarisDiskMap.h"
#include "native/host/HostInformation.h"
#include "native/host/KernelStatistics.h"
#include "native/host/SolarisUtil.h"

namespace tarn {
namespace {

constexpr const char *diskIOInformationClassName =
    "com/kelvo/tarn/providers/solaris/SolarisDiskIOInformationProvider$SolarisDiskIOInformation";

MadeClass GetClassAndMethod(JNIEnv *env) {
    return {env, diskIOInformationClassName, "(Ljava/lang/String;Ljava/lang/String;JJJJ)V", Binding::atOnce};
}

jobject newDiskIOInformation(const diskIOData &data, jstring kstatName, jstring deviceName, const MadeClass &result) {
    return result.make(kstatName, deviceName, static_cast<jlong>(data.bytesRead), static_cast<jlong>(data.bytesWritten),
                       jlong{data.waitLastUpdate}, jlong{data.runTime});
}

jobject makeDiskIOInfo(const diskIOData &data, const MadeClass &result) {
    const jni::LocalString kstatName(result.env, data.kstatName);
    const jni::LocalString deviceName(result.env, data.deviceName);
    return newDiskIOInformation(data, kstatName.get(), deviceName.get(), result);
}

/// With the caller's own string as the disk name.
jobject makeDiskIOInfo(const diskIOData &data, jstring name, const MadeClass &result) {
    const jni::LocalString kstatName(result.env, data.kstatName);
    return newDiskIOInformation(data, kstatName.get(), name, result);
}

} // namespace

std::vector<diskIOData> getDiskIOData() {
    constexpr std::size_t used = offsetof(kstat_io_t, rtime) + sizeof(kstat_io_t::rtime); // the last of the four fields
    const KernelStatistics statistics("kstat open failed.");
    SolarisDiskMap diskMap;
    std::vector<diskIOData> disks;
    for (kstat_t *record = statistics.first(); record != nullptr; record = record->ks_next) {
        const std::optional<kstat_io_t> counters =
            isOfDisk(*record) ? statistics.read<kstat_io_t>(record, used) : std::nullopt;
        if (!counters) {
            continue;
        }
        diskIOData disk;
        disk.kstatName = fieldText(record->ks_name);
        disk.deviceName = diskMap.getDeviceIdFromMap(disk.kstatName);
        disk.bytesRead = counters->nread;
        disk.bytesWritten = counters->nwritten;
        disk.runTime = counters->rtime;
        disk.waitLastUpdate = counters->wlastupdate;
        disks.push_back(std::move(disk));
    }
    return disks;
}

std::optional<diskIOData> findDiskIOData(const std::string &name) {
    const std::string instanceName = getSDxName(name);
    std::vector<diskIOData> disks = getDiskIOData();
    const auto found = std::ranges::find(disks, instanceName, &diskIOData::kstatName);
    if (instanceName.empty() || found == disks.end()) {
        return std::nullopt;
    }
    return std::move(*found);
}

diskIOData getDiskIOData(const std::string &name) {
    std::optional<diskIOData> found = findDiskIOData(name);
    if (!found) {
        throw DiskIONameNotFound(name);
    }
    return *std::move(found);
}

} // namespace tarn

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getDiskIOInformation(JNIEnv *env, jobject, jstring diskName) {
    using namespace tarn;
    return runThrowingEntry(env, [&]() -> jobject {
        const MadeClass result = GetClassAndMethod(env);
        const JniString name(env, diskName);
        const std::optional<diskIOData> data = findDiskIOData(name.utf8());
        return data ? makeDiskIOInfo(*data, diskName, result) : nullptr;
    });
}

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_enumerateDiskIOInformation(JNIEnv *env, jobject) {
    using namespace tarn;
    return enumerateRecords(
        env, GetClassAndMethod, [] { return getDiskIOData(); },
        [](const diskIOData &data, const MadeClass &result) { return makeDiskIOInfo(data, result); });
}
