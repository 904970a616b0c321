#pragma once

#include "common/Jni.h"

namespace tarn {

/// Hands one line to the static method `level` ("info", "warn") of the Java class `className` (slash-separated), which
/// takes one string. A line that cannot be delivered is dropped: no exception is pending afterwards, and no reference
/// stays behind.
inline void deliverLogLine(JNIEnv *env, const char *className, const char *message, const char *level) {
    try {
        const jni::LocalRef<jclass> target(env, jni::findClass(env, className));
        const jmethodID method = jni::staticMethodId(env, target.get(), level, "(Ljava/lang/String;)V");
        const jni::LocalRef<jstring> text(env, jni::newString(env, message));
        env->CallStaticVoidMethod(target.get(), method, text.get());
        jni::check(env);
    } catch (const JavaExceptionPending &) {
        env->ExceptionClear();
    }
}

} // namespace tarn
