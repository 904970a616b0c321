#include "native/host/SolarisOperatingSystem.h"

#include <algorithm>
#include <optional>
#include <string>

#include "common/system/FieldText.h"
#include "native/host/HostInformation.h"
#include "native/host/KernelStatistics.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr const char *operatingSystemClassName =
    "com/kelvo/tarn/providers/solaris/SolarisOperatingSystemProvider$SolarisOperatingSystem";

constexpr std::size_t textLimit = 99; // characters of one reported text

MadeClass GetClassAndMethod(JNIEnv *env) {
    return {env, operatingSystemClassName, "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;JJJJ)V",
            Binding::atOnce};
}

/// A system-configuration value; 0 when the system does not tell it.
long configuration(int name) {
    return std::max(solaris::sysconf(name), 0L);
}

/// The kernel's paging counters at this moment; nothing when there is no such record or it cannot be read.
std::optional<vminfo_t> readPagingCounters(const KernelStatistics &statistics) {
    kstat_t *const record = statistics.pagingCounters();
    return record == nullptr ? std::nullopt : statistics.read<vminfo_t>(record, offsetof(vminfo_t, swap_free));
}

jobject makeOperatingSystem(const MadeClass &result, jstring name, jstring hostName, jstring version,
                            const OsMemoryInfo &memory) {
    return result.make(name, hostName, version, jlong{memory.totalPhysicalKB}, jlong{memory.freePhysicalKB},
                       jlong{memory.totalSwapKB}, jlong{memory.freeSwapKB});
}

jobject describeOperatingSystem(const MadeClass &result) {
    struct utsname names {}; // a system may have a variable of that name beside the structure
    if (solaris::uname(&names) == -1) {
        throw NativeError("uname failed in getOperatingSystem");
    }
    const auto text = [&](std::string full) {
        full.resize(std::min(full.size(), textLimit));
        return jni::newString(result.env, full.c_str());
    };
    const jstring name = text(std::string(fieldText(names.sysname)));
    const jstring hostName = text(std::string(fieldText(names.nodename)));
    const jstring version = text(std::string(fieldText(names.version)).append(".").append(fieldText(names.release)));
    return makeOperatingSystem(result, name, hostName, version, GetOSMemoryInfo());
}

jobject makeBlankOperatingSystem(const MadeClass &result) {
    const jstring name = jni::newString(result.env, " ");
    const jstring hostName = jni::newString(result.env, " ");
    const jstring version = jni::newString(result.env, " ");
    return makeOperatingSystem(result, name, hostName, version, OsMemoryInfo{});
}

} // namespace

OsMemoryInfo GetOSMemoryInfo() {
    const long pageSize = configuration(_SC_PAGESIZE);
    const auto pagesToKB = [pageSize](long pages) { return std::int64_t{pages} * (pageSize / 1024); };

    OsMemoryInfo memory;
    memory.totalPhysicalKB = pagesToKB(configuration(_SC_PHYS_PAGES));
    memory.freePhysicalKB = pagesToKB(configuration(_SC_AVPHYS_PAGES));

    const KernelStatistics statistics("kstat open failed");
    const std::optional<vminfo_t> before = readPagingCounters(statistics);
    if (!before) {
        return memory;
    }
    solaris::sleep(1);
    const std::optional<vminfo_t> after = readPagingCounters(statistics);
    if (!after) {
        return memory;
    }
    // The kernel adds the current page count to each counter once a second, so the difference over one second is the
    // page count itself. Unsigned arithmetic keeps it right when a counter wraps.
    const auto differenceToKB = [pageSize](std::uint64_t pages) {
        return static_cast<std::int64_t>(pages * static_cast<std::uint64_t>(pageSize) / 1024);
    };
    const std::uint64_t available = after->swap_avail - before->swap_avail;
    const std::uint64_t reserved = after->swap_resv - before->swap_resv;
    memory.totalSwapKB = differenceToKB(available + reserved);
    memory.freeSwapKB = differenceToKB(available);
    memory.freePhysicalKB = differenceToKB(after->freemem - before->freemem);
    return memory;
}

} // namespace tarn

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getOperatingSystem(JNIEnv *env, jobject) {
    using namespace tarn;
    return runEntry(env, [&]() -> jobject {
        const MadeClass result = GetClassAndMethod(env);
        try {
            try {
                return describeOperatingSystem(result);
            } catch (
                NativeError error) { // NOLINT(cert-err09-cpp,cert-err61-cpp): by value, a subclass arrives as its base
                LogMessage(env, error.getMessage(), "warn");
            }
        } catch (const JavaExceptionPending &) {
            throw;
        } catch (...) {
            // The blank object says that nothing could be learned.
        }
        return makeBlankOperatingSystem(result);
    });
}
