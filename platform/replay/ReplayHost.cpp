#include <jni.h>

#include <exception>
#include <string>

#include "platform/ExportedEntry.h"
#include "platform/replay/Replay.h"

// com.kelvo.tarn.replay.ReplayHost: how Java chooses the host.

namespace {

void throwIllegalArgument(JNIEnv *env, const char *message) {
    if (const jclass exception = env->FindClass("java/lang/IllegalArgumentException"); exception != nullptr) {
        env->ThrowNew(exception, message);
    }
}

} // namespace

/// static native void load(String path). Raises IllegalArgumentException when the description cannot be used.
TARN_EXPORTED_ENTRY void JNICALL Java_com_kelvo_tarn_replay_ReplayHost_load(JNIEnv *env, jclass, jstring path) {
    if (path == nullptr) {
        throwIllegalArgument(env, "no path of a host description");
        return;
    }
    const char *characters = env->GetStringUTFChars(path, nullptr);
    if (characters == nullptr) {
        return; // with the virtual machine's exception
    }
    try {
        replay::loadHostFile(characters);
    } catch (const std::exception &error) {
        throwIllegalArgument(env, error.what());
    }
    env->ReleaseStringUTFChars(path, characters);
}
