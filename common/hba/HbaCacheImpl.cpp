#include "common/hba/HbaCacheImpl.h"

#include <array>

#include "common/hba/Conversions.h"
#include "common/jni/JniString.h"
#include "common/jni/LogLine.h"

namespace tarn {

HbaCacheImpl::HbaCacheImpl(JNIEnv *environment, jobject hbaCacheObject, jobject hbaClassNamesObject)
    : env(environment), hbaCache(hbaCacheClass, hbaCacheObject),
      hbaClassNames(hbaClassNamesClass, hbaClassNamesObject) {
}

void HbaCacheImpl::info(const char *message) {
    const WithTracing tracing("info");
    log("info", message);
}

void HbaCacheImpl::warn(const char *message) {
    const WithTracing tracing("warn");
    log("warn", message);
}

void HbaCacheImpl::log(const char *level, const char *message) {
    logInFrame(env, [&] {
        const JniString className(env, needed(hbaClassNames.getNativeMethodClassName()));
        deliverLogLine(env, className.get(), message, level);
    });
}

jobject HbaCacheImpl::nameOf(jobject cimClass) {
    return jni::callObject(env, needed(cimClass), trClass.meth_getName());
}

jobject HbaCacheImpl::wwnText(const HBA_wwn &wwn) {
    return jni::required(env->NewStringUTF(toString(wwn)));
}

jobject HbaCacheImpl::uint32(HBA_UINT32 value) {
    return unsignedInt32.make(jlong{value});
}

jobject HbaCacheImpl::uint64(long long value) {
    const WithTracing tracing("uint64");
    constexpr jsize size = 9; // a zero byte keeps the sign bit clear
    const jbyteArray bytes = jni::required(env->NewByteArray(size));
    std::array<jbyte, size> buffer{};
    for (unsigned k = 0; k < 8; ++k) {
        buffer[k + 1] = static_cast<jbyte>(static_cast<unsigned long long>(value) >> (7 - k) * 8);
    }
    env->SetByteArrayRegion(bytes, 0, size, buffer.data());
    return unsignedInt64.make(bytes);
}

jobject HbaCacheImpl::string(char *text, int size) {
    return jni::required(env->NewStringUTF(terminateString(text, size))); // which leaves ASCII
}

} // namespace tarn
