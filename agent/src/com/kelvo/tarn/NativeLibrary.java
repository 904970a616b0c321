package com.kelvo.tarn;

/** Loads the native library, once, for whichever class needs it first. */
public final class NativeLibrary {
    static {
        System.loadLibrary("tarnsolaris");
    }

    private NativeLibrary() {
    }

    /** Every class with native methods calls this as it is initialised. */
    public static void load() {
    }
}
