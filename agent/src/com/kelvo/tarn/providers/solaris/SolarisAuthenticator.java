package com.kelvo.tarn.providers.solaris;

import com.kelvo.tarn.NativeLibrary;

/** Checks local users' passwords. */
public final class SolarisAuthenticator {
    static {
        NativeLibrary.load();
    }

    /**
     * {@return whether the password is that user's; also true for any password where the user's is empty}
     *
     * @param user a local user's name; null counts as an empty one
     * @param password in clear; null counts as an empty one
     */
    public native boolean authenticate(String user, String password);

    /** {@return the library's build date, a fixed text such as "Jan 18 2006"} */
    public native String getLibraryBuildDate();
}
