package com.kelvo.tarn.cli.answers;

import java.util.regex.Pattern;

/** How people name disks and slices. */
public final class DeviceNames {
    private static final Pattern DIRECTORY = Pattern.compile("^/dev/r?dsk/");
    private static final Pattern SLICE = Pattern.compile("s\\d+$");

    private static final Pattern LETTER = Pattern.compile("(?<=\\d)[a-p]$");

    private DeviceNames() {
    }

    /**
     * {@return the name without "/dev/dsk/" or "/dev/rdsk/" before it}
     *
     * @param name a device's
     */
    public static String withoutDirectory(String name) {
        return DIRECTORY.matcher(name).replaceFirst("");
    }

    /** Whether the name is that of an entry of "/dev/dsk" or "/dev/rdsk", with the directory. */
    static boolean hasDirectory(String name) {
        return DIRECTORY.matcher(name).lookingAt();
    }

    /**
     * {@return the name without the slice at its end, such as "s2"}
     *
     * @param name a device's
     */
    public static String withoutSlice(String name) {
        return SLICE.matcher(name).replaceFirst("");
    }

    /** The name without the letter at its end, by which pseudo devices number their slices. */
    static String withoutLetter(String name) {
        return LETTER.matcher(name).replaceFirst("");
    }
}
