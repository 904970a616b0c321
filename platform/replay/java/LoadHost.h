#pragma once

#include <jni.h>

namespace replay {

/// What every native load(String path) does. Answers when the host was recorded, null when its description does not say.
/// Raises IllegalArgumentException when the description cannot be used; the host before it stays.
jstring loadHost(JNIEnv *env, jstring path);

} // namespace replay
