package com.kelvo.tarn.cli.answers;

import java.util.regex.Pattern;

/** How people name disks and slices. */
public final class DeviceNames {
    private static final Pattern directory = Pattern.compile("^/dev/r?dsk/");
    private static final Pattern slice = Pattern.compile("s\\d+$");

    private DeviceNames() {
    }

    /**
     * {@return the name without "/dev/dsk/" or "/dev/rdsk/" before it}
     *
     * @param name of a disk or a slice
     */
    public static String withoutDirectory(String name) {
        return directory.matcher(name).replaceFirst("");
    }

    /** Whether the name is that of an entry of "/dev/dsk" or "/dev/rdsk", with the directory. */
    static boolean hasDirectory(String name) {
        return directory.matcher(name).lookingAt();
    }

    /** The name without the slice at its end, such as "s2". */
    static String withoutSlice(String name) {
        return slice.matcher(name).replaceFirst("");
    }
}
