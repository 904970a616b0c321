// The enumerations of a large host against loops that make the same Java objects of values already gathered, and put
// the same calls to the platform once each.

#include <benchmark/benchmark.h>

#include "benchmarks/Comparison.h"
#include "benchmarks/Hosts.h"
#include "common/system/Directory.h"
#include "native/host/SolarisCpuUtilizationInformation.h"
#include "native/host/SolarisDiskIOInformation.h"
#include "native/host/SolarisLogicalDisk.h"
#include "native/host/SolarisProcessor.h"
#include "platform/solaris.h"
#include "tests/machine/Jvm.h"

#define HOST_FACT(method) Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_##method

extern "C" {
jobject HOST_FACT(enumerateLogicalDiskNames)(JNIEnv *, jobject);
jobject HOST_FACT(enumerateProcessors)(JNIEnv *, jobject);
jobject HOST_FACT(enumerateCpuUtilizationInfo)(JNIEnv *, jobject);
jobject HOST_FACT(enumerateDiskIOInformation)(JNIEnv *, jobject);
}

namespace bench {
namespace {

constexpr double bound = 1.25;

/// The JNI calls that a list of results needs: `make` is given the result's class and constructor for each value.
template <class Values, class Make>
jobject makeList(JNIEnv *env, const char *className, const char *constructorSignature, const Values &values,
                 Make make) {
    const jclass cls = env->FindClass(className);
    const jmethodID constructor = env->GetMethodID(cls, "<init>", constructorSignature);
    const jclass vectorClass = env->FindClass("java/util/Vector");
    const jobject list = env->NewObject(vectorClass, env->GetMethodID(vectorClass, "<init>", "()V"));
    const jmethodID addElement = env->GetMethodID(vectorClass, "addElement", "(Ljava/lang/Object;)V");
    for (const auto &value : values) {
        env->CallVoidMethod(list, addElement, make(value, cls, constructor));
    }
    return list;
}

/// Opens the mount table and reads so many entries of it.
void readMountTable(std::size_t entries) {
    FILE *const table = solaris::fopen("/etc/mnttab", "r");
    mnttab entry{};
    for (std::size_t i = 0; i < entries; ++i) {
        solaris::getmntent(table, &entry);
    }
    solaris::fclose(table);
}

/// By rule, the library reads the table anew for each disk that it describes, up to that disk, and so does this.
jobject logicalDiskFloor(JNIEnv *env) {
    static const std::vector<tarn::LogicalDisk> disks = [] {
        std::vector<tarn::LogicalDisk> all;
        for (const std::string &mountPoint : tarn::ListLogicalDisks()) {
            all.push_back(tarn::GetLogicalDisk(mountPoint, false));
        }
        return all;
    }();
    readMountTable(disks.size() + 1);
    std::size_t entries = 0;
    return makeList(env, "com/kelvo/tarn/providers/solaris/SolarisLogicalDiskProvider$SolarisLogicalDisk",
                    "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;JJJJ)V", disks,
                    [&](const tarn::LogicalDisk &disk, jclass cls, jmethodID constructor) {
                        readMountTable(++entries);
                        return env->NewObject(cls, constructor, env->NewStringUTF(disk.device.c_str()),
                                              env->NewStringUTF(disk.mountPoint.c_str()),
                                              env->NewStringUTF(disk.fileSystemType.c_str()), jlong{0}, jlong{0},
                                              jlong{0}, jlong{0});
                    });
}

jobject processorFloor(JNIEnv *env) {
    static const std::vector<tarn::ProcessorInfo> processors = tarn::GetProcessors();
    solaris::sysconf(_SC_NPROCESSORS_CONF);
    solaris::sysconf(_SC_CPUID_MAX);
    for (const tarn::ProcessorInfo &processor : processors) {
        processor_info_t information{};
        solaris::processor_info(processor.processorId, &information);
    }
    return makeList(env, "com/kelvo/tarn/providers/solaris/processor/SolarisProcessorProvider$SolarisProcessorData",
                    "(ILjava/lang/String;Ljava/lang/String;J)V", processors,
                    [env](const tarn::ProcessorInfo &processor, jclass cls, jmethodID constructor) {
                        return env->NewObject(cls, constructor, jint{processor.processorId},
                                              env->NewStringUTF(processor.processorType.c_str()),
                                              env->NewStringUTF(processor.state.c_str()), jlong{processor.clockMHz});
                    });
}

jobject cpuUtilizationFloor(JNIEnv *env) {
    static const std::vector<tarn::CpuUtilInfo> infos = tarn::getCpuUtilInfos();
    kstat_ctl_t *const statistics = kstat_open();
    for (kstat_t *record = statistics->kc_chain; record != nullptr; record = record->ks_next) {
        if (record->ks_type == KSTAT_TYPE_RAW) {
            kstat_read(statistics, record, nullptr);
        }
    }
    kstat_close(statistics);
    return makeList(env,
                    "com/kelvo/tarn/providers/solaris/processor/"
                    "SolarisCpuUtilizationInformationProvider$SolarisCpuUtilizationData",
                    "(IJJJJ)V", infos, [env](const tarn::CpuUtilInfo &info, jclass cls, jmethodID constructor) {
                        return env->NewObject(cls, constructor, jint{info.cpuId}, jlong{info.userTicks},
                                              jlong{info.kernelTicks}, jlong{info.waitTicks}, jlong{info.idleTicks});
                    });
}

/// The first slices under "/dev/dsk".
std::vector<std::string> firstSlices() {
    std::vector<std::string> paths;
    tarn::Directory directory("/dev/dsk");
    while (const char *const name = directory.next()) {
        if (std::string_view(name).ends_with("s0")) {
            paths.push_back(std::string("/dev/dsk/") + name);
        }
    }
    return paths;
}

void readDiskNames() {
    static const std::vector<std::string> paths = firstSlices();
    tarn::Directory directory("/dev/dsk");
    while (directory.next() != nullptr) {
    }
    for (const std::string &path : paths) {
        struct stat status {};
        solaris::stat(path.c_str(), &status);
        char target[1024];
        benchmark::DoNotOptimize(solaris::readlink(path.c_str(), target, sizeof target));
    }
}

jobject diskIOFloor(JNIEnv *env) {
    static const std::vector<tarn::diskIOData> disks = tarn::getDiskIOData();
    kstat_ctl_t *const statistics = kstat_open();
    readDiskNames();
    for (kstat_t *record = statistics->kc_chain; record != nullptr; record = record->ks_next) {
        if (record->ks_type == KSTAT_TYPE_IO) {
            kstat_io_t counters{};
            kstat_read(statistics, record, &counters);
        }
    }
    kstat_close(statistics);
    return makeList(env, "com/kelvo/tarn/providers/solaris/SolarisDiskIOInformationProvider$SolarisDiskIOInformation",
                    "(Ljava/lang/String;Ljava/lang/String;JJJJ)V", disks,
                    [env](const tarn::diskIOData &disk, jclass cls, jmethodID constructor) {
                        return env->NewObject(cls, constructor, env->NewStringUTF(disk.kstatName.c_str()),
                                              env->NewStringUTF(disk.deviceName.c_str()),
                                              static_cast<jlong>(disk.bytesRead), static_cast<jlong>(disk.bytesWritten),
                                              jlong{disk.waitLastUpdate}, jlong{disk.runTime});
                    });
}

std::vector<Comparison> comparisons() {
    const std::string host = hostOf({.processors = 128, .disks = 1000, .mounts = 2000});
    const auto compared = [&host](const char *name, jobject (*entry)(JNIEnv *, jobject), jobject (*floor)(JNIEnv *)) {
        Comparison comparison{.name = name,
                              .bound = bound,
                              .measured = {host, [entry](JNIEnv *env) { return entry(env, nullptr); }},
                              .reference = {host, floor},
                              .content = jvm::elementTexts};
        return comparison;
    };
    std::vector<Comparison> all{
        compared("enumerateLogicalDiskNames, 2,000 mounts", HOST_FACT(enumerateLogicalDiskNames), logicalDiskFloor),
        compared("enumerateProcessors, 128 processors", HOST_FACT(enumerateProcessors), processorFloor),
        compared("enumerateCpuUtilizationInfo, 128 processors", HOST_FACT(enumerateCpuUtilizationInfo),
                 cpuUtilizationFloor),
        compared("enumerateDiskIOInformation, 1,000 disks", HOST_FACT(enumerateDiskIOInformation), diskIOFloor),
    };
    all[0].turns = 10; // it reads two million lines a turn
    return all;
}

const Registration registration(comparisons);

} // namespace
} // namespace bench
