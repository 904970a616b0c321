#include "platform/ExportedEntry.h"
#include "platform/replay/java/LoadHost.h"

// com.kelvo.tarn.replay.ReplayHost: the host that answers the agent.

TARN_EXPORTED_ENTRY jstring JNICALL Java_com_kelvo_tarn_replay_ReplayHost_load(JNIEnv *env, jclass, jstring path) {
    return replay::loadHost(env, path);
}
