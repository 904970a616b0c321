package com.kelvo.tarn.cli.answers;

import java.util.List;
import java.util.regex.Pattern;

/** How people name disks and slices. */
public final class DeviceNames {
    private static final List<String> DIRECTORIES = List.of("/dev/dsk/", "/dev/rdsk/");
    private static final Pattern LETTER = Pattern.compile("(?<=\\d)[a-p]$");

    private DeviceNames() {
    }

    /**
     * {@return the name without "/dev/dsk/" or "/dev/rdsk/" before it}
     *
     * @param name a device's
     */
    public static String withoutDirectory(String name) {
        return name.substring(directory(name).length());
    }

    /** Whether the name is that of an entry of "/dev/dsk" or "/dev/rdsk", with the directory. */
    static boolean hasDirectory(String name) {
        return !directory(name).isEmpty();
    }

    private static String directory(String name) {
        for (String directory : DIRECTORIES) {
            if (name.startsWith(directory)) {
                return directory;
            }
        }
        return "";
    }

    /**
     * {@return the name without the slice at its end, such as "s2"}
     *
     * @param name a device's
     */
    public static String withoutSlice(String name) {
        int digits = name.length();
        while (digits > 0 && Character.digit(name.charAt(digits - 1), 10) >= 0) {
            digits--;
        }
        return digits > 0 && digits < name.length() && name.charAt(digits - 1) == 's' ? name.substring(0, digits - 1)
            : name;
    }

    /** The name without the letter at its end, by which pseudo devices number their slices. */
    static String withoutLetter(String name) {
        return LETTER.matcher(name).replaceFirst("");
    }
}
