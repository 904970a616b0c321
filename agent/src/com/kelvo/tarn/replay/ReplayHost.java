package com.kelvo.tarn.replay;

import com.kelvo.tarn.NativeLibrary;

/** Chooses the host that answers where the library replays one. */
public final class ReplayHost {
    static {
        NativeLibrary.load();
    }

    private ReplayHost() {
    }

    /**
     * Makes a host description the one that answers from now on. It is read once, and so may come through a pipe.
     *
     * @param path the description's file
     * @return when the host was recorded, in UTC, such as "2026-11-24T10:00:00Z"; null when the description does
     *     not say
     * @throws IllegalArgumentException when it cannot be read, naming the file and the member; the host before it stays
     */
    public static native String load(String path);

    /**
     * The same of a description that is at hand, such as one that was compressed, or came through a pipe and is to
     * answer the inventory, too.
     *
     * @param text the description, in UTF-8
     * @param name what complaints call it: its file's path
     * @return when the host was recorded; null when the description does not say
     * @throws IllegalArgumentException when it cannot be used, or an argument is null; the host before it stays
     */
    public static native String load(byte[] text, String name);

    /**
     * What the file of a description holds, read once under the rules of {@link #load(String)}; whether it is a
     * description shows when it is loaded.
     *
     * @param path the file
     * @return its bytes
     * @throws IllegalArgumentException when it cannot be read: also a device, more than 1 GB, a pipe from which nothing
     *     comes for 30 seconds
     */
    public static native byte[] read(String path);
}
