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
}
