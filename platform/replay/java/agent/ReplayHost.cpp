#include "platform/ExportedEntry.h"
#include "platform/replay/java/LoadHost.h"

// com.kelvo.tarn.replay.ReplayHost: the host that answers the agent.

TARN_EXPORTED_ENTRY void JNICALL Java_com_kelvo_tarn_replay_ReplayHost_load(JNIEnv *env, jclass, jstring path) {
    replay::loadHost(env, path);
}
