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
     * Makes a host description the one that answers from now on.
     *
     * @param path the description's file
     * @throws IllegalArgumentException when it cannot be read, naming the file and the member; the host before it stays
     */
    public static native void load(String path);
}
