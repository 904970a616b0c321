#pragma once

#include <new>

#include "common/jni/ClassProxy.h"
#include "common/jni/LocalFrame.h"

namespace tarn {

/// Delivers a log line inside a local frame of its own, so that any number of lines leaves no references behind. A line
/// that cannot be delivered is dropped: no exception is pending afterwards, except for an error of the virtual machine
/// itself (java.lang.VirtualMachineError), with which every further line would fail as well. That one ends the work with
/// JavaExceptionPending.
template <class Deliver>
void logInFrame(JNIEnv *env, Deliver deliver) {
    const LocalFrame frame(env, 5, LocalFrame::Refusal::isFailure);
    try {
        deliver();
    } catch (const NoInstance &) {
        // Nobody says where the log is.
    } catch (const std::bad_alloc &) {
        // There is no memory to tell it.
    } catch (const JavaExceptionPending &) {
        const jthrowable exception = env->ExceptionOccurred();
        env->ExceptionClear();
        if (env->IsInstanceOf(exception, ClassProxy(env, "java/lang/VirtualMachineError").cls) == JNI_TRUE) {
            env->Throw(exception);
            throw;
        }
    }
}

/// Hands one line to the static method `level` ("info", "warn") of the Java class `className` (slash-separated), which
/// takes one string. Throws JavaExceptionPending.
inline void deliverLogLine(JNIEnv *env, const char *className, const char *message, const char *level) {
    const ClassProxy target(env, className);
    const StaticMethod method(target, level, "(Ljava/lang/String;)V", Binding::atOnce);
    env->CallStaticVoidMethod(target.cls, method(), jni::newString(env, message));
    jni::check(env);
}

} // namespace tarn
