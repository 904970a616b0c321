#include "platform/ExportedEntry.h"
#include "platform/replay/java/LoadHost.h"

// com.kelvo.tarn.replay.ReplayHost: the host that answers the agent.

TARN_EXPORTED_ENTRY jstring JNICALL Java_com_kelvo_tarn_replay_ReplayHost_load__Ljava_lang_String_2(JNIEnv *env, jclass,
                                                                                                    jstring path) {
    return replay::loadHost(env, path);
}

TARN_EXPORTED_ENTRY jstring JNICALL Java_com_kelvo_tarn_replay_ReplayHost_load___3BLjava_lang_String_2(JNIEnv *env,
                                                                                                       jclass,
                                                                                                       jbyteArray text,
                                                                                                       jstring name) {
    return replay::loadHost(env, text, name);
}

TARN_EXPORTED_ENTRY jbyteArray JNICALL Java_com_kelvo_tarn_replay_ReplayHost_read(JNIEnv *env, jclass, jstring path) {
    return replay::readHost(env, path);
}
