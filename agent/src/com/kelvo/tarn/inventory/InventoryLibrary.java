package com.kelvo.tarn.inventory;

/** Loads the inventory's library, once, for whichever class needs it first. */
final class InventoryLibrary {
    static {
        System.loadLibrary("tarninventory");
    }

    private InventoryLibrary() {
    }

    /** Every class with native methods calls this as it is initialised. */
    static void load() {
    }
}
