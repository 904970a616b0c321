#include "native/JavaError.h"

#include "common/jni/Jni.h"
#include "common/jni/LogLine.h"

namespace tarn {

void ThrowJavaError(JNIEnv *env, const std::string &message) {
    ThrowJavaError(env, message.c_str());
}

void ThrowJavaError(JNIEnv *env, const char *message) {
    try {
        const jstring text = jni::newString(env, message);
        const jclass runtimeException = jni::findClass(env, "java/lang/RuntimeException");
        const jmethodID constructor = jni::methodId(env, runtimeException, "<init>", "(Ljava/lang/String;)V");
        env->Throw(static_cast<jthrowable>(jni::newObject(env, runtimeException, constructor, text)));
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
