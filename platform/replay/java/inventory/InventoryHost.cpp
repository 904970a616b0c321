#include "platform/ExportedEntry.h"
#include "platform/replay/java/LoadHost.h"

// com.kelvo.tarn.inventory.InventoryHost: the host that answers the inventory.

TARN_EXPORTED_ENTRY void JNICALL Java_com_kelvo_tarn_inventory_InventoryHost_load(JNIEnv *env, jclass, jstring path) {
    replay::loadHost(env, path);
}
