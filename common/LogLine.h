#pragma once

#include "common/Jni.h"

namespace tarn {

/// Hands one line to the static method `level` ("info", "warn") of the Java class `className` (slash-separated), which
/// takes one string. A line that cannot be delivered is dropped: no exception is pending afterwards. Two local references
/// stay with the caller's frame.
inline void deliverLogLine(JNIEnv *env, const char *className, const char *message, const char *level) {
    try {
        const jclass target = jni::findClass(env, className);
        const jmethodID method = jni::staticMethodId(env, target, level, "(Ljava/lang/String;)V");
        env->CallStaticVoidMethod(target, method, jni::newString(env, message));
        jni::check(env);
    } catch (const JavaExceptionPending &) {
        env->ExceptionClear();
    }
}

} // namespace tarn
