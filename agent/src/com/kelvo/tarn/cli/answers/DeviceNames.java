package com.kelvo.tarn.cli.answers;

/** How people name disks and slices. Without expressions, since it is asked for each path. */
public final class DeviceNames {
    private static final String[] DIRECTORIES = {"/dev/dsk/", "/dev/rdsk/"};

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
        while (isDigit(name, digits - 1)) {
            digits--;
        }
        return 0 < digits && digits < name.length() && name.charAt(digits - 1) == 's' ? name.substring(0, digits - 1)
            : name;
    }

    /** The name without the letter at its end, by which pseudo devices number their slices. */
    static String withoutLetter(String name) {
        int last = name.length() - 1;
        return isDigit(name, last - 1) && name.charAt(last) >= 'a' && name.charAt(last) <= 'p'
            ? name.substring(0, last) : name;
    }

    private static boolean isDigit(String name, int place) {
        return place >= 0 && name.charAt(place) >= '0' && name.charAt(place) <= '9';
    }
}
