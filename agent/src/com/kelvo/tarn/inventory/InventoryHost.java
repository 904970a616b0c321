package com.kelvo.tarn.inventory;

/** Chooses the host that answers the inventory where its library replays one: each library has a host of its own. */
public final class InventoryHost {
    static {
        InventoryLibrary.load();
    }

    private InventoryHost() {
    }

    /**
     * Makes a host description the one that answers from now on. An open sampler goes over to it with its next
     * reading, as if devices had come and gone.
     *
     * @param path the description's file
     * @throws IllegalArgumentException when it cannot be read, naming the file and the member; the host before it stays
     */
    public static native void load(String path);
}
