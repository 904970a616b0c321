#pragma once

#include "common/jni/ClassProxy.h"
#include "common/jni/LocalFrame.h"
#include "platform/ExportedEntry.h"

namespace tarn {

/// Leaves a java.lang.OutOfMemoryError pending: this one, or that of a virtual machine which refuses to make it.
inline void throwOutOfMemory(JNIEnv *env) {
    try {
        const LocalFrame frame(env, 1, LocalFrame::Refusal::isFailure); // the entry may have used up its room
        ClassProxy(env, "java/lang/OutOfMemoryError").throwNew("no memory for the native call");
    } catch (const JavaExceptionPending &) {
        // It is raised as the entry returns.
    }
}

/// Runs the body of an entry point that raises no Java exception of its own. Returns the body's result, or null when it
/// could not end; a Java exception is pending then. No native exception passes: one that comes up here is a lack of memory,
/// or of what else the process has only so much of, and what Java sees of it is an OutOfMemoryError.
template <class Body>
auto runEntry(JNIEnv *env, Body body) -> decltype(body()) {
    try {
        return body();
    } catch (const JavaExceptionPending &) {
        // It is raised as the entry returns.
    } catch (...) {
        throwOutOfMemory(env);
    }
    return decltype(body())();
}

} // namespace tarn
