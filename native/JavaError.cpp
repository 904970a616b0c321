#include "native/JavaError.h"

#include "common/jni/ClassProxy.h"
#include "common/jni/LogLine.h"

namespace tarn {

void ThrowJavaError(JNIEnv *env, const std::string &message) {
    ThrowJavaError(env, message.c_str());
}

void ThrowJavaError(JNIEnv *env, const char *message) {
    try {
        const jstring text = jni::newString(env, message);
        const MadeClass runtimeException(env, "java/lang/RuntimeException", "(Ljava/lang/String;)V", Binding::atOnce);
        env->Throw(static_cast<jthrowable>(runtimeException.make(text)));
    } catch (const JavaExceptionPending &) {
        // The exception that stopped this one is pending in its place.
    }
}

void LogMessage(JNIEnv *env, const std::string &message, const std::string &level) {
    LogMessage(env, message.c_str(), level.c_str());
}

void LogMessage(JNIEnv *env, const char *message, const char *level) {
    logInFrame(env,
               [&] { deliverLogLine(env, "com/kelvo/tarn/providers/solaris/SolarisNativeMethod", message, level); });
}

} // namespace tarn
