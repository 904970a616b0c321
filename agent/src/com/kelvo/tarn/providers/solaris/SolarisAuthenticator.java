package com.kelvo.tarn.providers.solaris;

import com.kelvo.tarn.NativeLibrary;

/** Checks local users' passwords. */
public final class SolarisAuthenticator {
    static {
        NativeLibrary.load();
    }

    public native boolean authenticate(String user, String password);

    public native String getLibraryBuildDate();
}
