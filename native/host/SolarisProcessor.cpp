#include "native/host/SolarisProcessor.h"

#include <algorithm>

#include "common/system/FieldText.h"
#include "common/system/Processors.h"
#include "native/host/HostInformation.h"
#include "platform/solaris.h"

namespace tarn {
namespace {

constexpr const char *processorClassName =
    "com/kelvo/tarn/providers/solaris/processor/SolarisProcessorProvider$SolarisProcessorData";

constexpr long processorLimit = 128;

MadeClass GetClassAndMethod(JNIEnv *env) {
    return {env, processorClassName, "(ILjava/lang/String;Ljava/lang/String;J)V", Binding::atOnce};
}

jobject makeProcessor(const ProcessorInfo &info, const MadeClass &result) {
    const jni::LocalString processorType(result.env, info.processorType);
    const jni::LocalString state(result.env, info.state);
    return result.make(jint{info.processorId}, processorType.get(), state.get(), jlong{info.clockMHz});
}

} // namespace

std::vector<ProcessorInfo> GetProcessors() {
    std::vector<ProcessorInfo> processors;
    forEachProcessor(processorLimit, [&](processorid_t id, const processor_info_t &information) {
        processors.push_back({id, std::string(fieldText(information.pi_processor_type)),
                              information.pi_state == P_ONLINE ? "online" : "offline", information.pi_clock});
    });
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
    return enumerateRecords(env, GetClassAndMethod, GetProcessors, makeProcessor);
}

TARN_EXPORTED_ENTRY jobject JNICALL Java_com_kelvo_tarn_providers_solaris_SolarisNativeMethod_getProcessor(JNIEnv *env,
                                                                                                           jobject,
                                                                                                           jint id) {
    using namespace tarn;
    return runThrowingEntry(env, [&]() -> jobject {
        const MadeClass result = GetClassAndMethod(env);
        const std::optional<ProcessorInfo> info = GetProcessorInfo(id);
        return info ? makeProcessor(*info, result) : nullptr;
    });
}
