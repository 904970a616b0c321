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
     * @return when the host was recorded, in UTC, such as "2026-11-24T10:00:00Z"; null when the description does not
     *     say
     * @throws IllegalArgumentException when it cannot be read, naming the file and the member; the host before it stays
     */
    public static native String load(String path);

    /**
     * The same of a description that is at hand.
     *
     * @param text the description, in UTF-8
     * @param name what complaints call it: its file's path
     * @return when the host was recorded; null when the description does not say
     * @throws IllegalArgumentException when it cannot be used, or an argument is null; the host before it stays
     */
    public static native String load(byte[] text, String name);
}
