#include "platform/ExportedEntry.h"
#include "platform/replay/java/LoadHost.h"

// com.kelvo.tarn.inventory.InventoryHost: the host that answers the inventory.

TARN_EXPORTED_ENTRY jstring JNICALL
Java_com_kelvo_tarn_inventory_InventoryHost_load__Ljava_lang_String_2(JNIEnv *env, jclass, jstring path) {
    return replay::loadHost(env, path);
}

TARN_EXPORTED_ENTRY jstring JNICALL Java_com_kelvo_tarn_inventory_InventoryHost_load___3BLjava_lang_String_2(
    JNIEnv *env, jclass, jbyteArray text, jstring name) {
    return replay::loadHost(env, text, name);
}
