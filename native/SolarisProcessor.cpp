#include "native/SolarisProcessor.h"

#include <algorithm>

#include "common/FieldText.h"
#include "native/HostInformation.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr const char *processorClassName =
    "com/kelvo/tarn/providers/solaris/processor/SolarisProcessorProvider$SolarisProcessorData";

constexpr long processorLimit = 128;

constexpr long largestKnownId = 4095; // beyond the ids of any SPARC; for a system that does not tell its own limit
constexpr long largestProbedId = 1'048'575; // so that no answer of the system makes the probing endless

/// The largest id a processor can have on this system.
long largestProcessorId() {
    const long largest = solaris::sysconf(_SC_CPUID_MAX);
    return largest < 0 ? largestKnownId : std::min(largest, largestProbedId);
}

ResultClass GetClassAndMethod(JNIEnv *env) {
    return bindResultClass(env, processorClassName, "(ILjava/lang/String;Ljava/lang/String;J)V");
}

jobject makeProcessor(const ProcessorInfo &info, JNIEnv *env, const ResultClass &result) {
    const jni::LocalRef<jstring> processorType(env, jni::newString(env, info.processorType.c_str()));
    const jni::LocalRef<jstring> state(env, jni::newString(env, info.state.c_str()));
    return jni::newObject(env, result.cls, result.constructor, jint{info.processorId}, processorType.get(), state.get(),
                          jlong{info.clockMHz});
}

} // namespace

std::vector<ProcessorInfo> GetProcessors() {
    long missing = std::min(solaris::sysconf(_SC_NPROCESSORS_CONF), processorLimit);
    const long largestId = largestProcessorId();
    std::vector<ProcessorInfo> processors;
    processors.reserve(static_cast<std::size_t>(std::max(missing, 0L)));
    for (processorid_t id = 0; missing > 0 && id <= largestId; ++id) {
        processor_info_t information{};
        if (solaris::processor_info(id, &information) == -1) {
            continue;
        }
        processors.push_back({id, std::string(fieldText(information.pi_processor_type)),
                              information.pi_state == P_ONLINE ? "online" : "offline", information.pi_clock});
        --missing;
    }
    return processors;
}

std::optional<ProcessorInfo> GetProcessorInfo(std::int32_t id) {
    const std::vector<ProcessorInfo> processors = GetProcessors();
    const auto found = std::ranges::find(processors, id, &ProcessorInfo::processorId);
    return found == processors.end() ? std::nullopt : std::optional(*found);
}

} // namespace tarn

TARN_EXPORTED_ENTRY jobject JNICALL
Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_enumerateProcessors(JNIEnv *env, jobject) {
    using namespace tarn;
    return runThrowingEntry(env, [&] {
        const ResultClass result = GetClassAndMethod(env);
        return enumerateRecords(env, GetProcessors,
                                [&](const ProcessorInfo &info) { return makeProcessor(info, env, result); });
    });
}

TARN_EXPORTED_ENTRY jobject JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getProcessor(JNIEnv *env,
                                                                                                           jobject,
                                                                                                           jint id) {
    using namespace tarn;
    return runThrowingEntry(env, [&]() -> jobject {
        const ResultClass result = GetClassAndMethod(env);
        const std::optional<ProcessorInfo> info = GetProcessorInfo(id);
        return info ? makeProcessor(*info, env, result) : nullptr;
    });
}
