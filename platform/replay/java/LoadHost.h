#pragma once

#include <jni.h>

namespace replay {

/// What every `static native void load(String path)` does. Raises IllegalArgumentException when the description cannot be
/// used; the host before it stays.
void loadHost(JNIEnv *env, jstring path);

} // namespace replay
