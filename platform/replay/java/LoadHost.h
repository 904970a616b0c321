#pragma once

#include <jni.h>

namespace replay {

/// What every native load(String path) and load(byte[] text, String name) does. Answers when the host was recorded,
/// null when its description does not say. Raises IllegalArgumentException when the description cannot be used; the
/// host before it stays.
jstring loadHost(JNIEnv *env, jstring path);
jstring loadHost(JNIEnv *env, jbyteArray text, jstring name);

/// What ReplayHost.read does: the text of a description's file, whatever it says. Raises IllegalArgumentException when
/// the file cannot be read.
jbyteArray readHost(JNIEnv *env, jstring path);

} // namespace replay
