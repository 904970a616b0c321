package com.kelvo.tarn.cli;

import java.util.Locale;

/** Sizes as people read them. */
final class Units {
    /** Bytes in a sector, of disk geometries and partition tables alike. */
    static final int SECTOR = 512;

    private Units() {
    }

    /** Bytes in the unit that leaves one to four digits before the point, such as "68.3 GiB". */
    static String bytes(double bytes) {
        String prefixes = "KMGTPE";
        int prefix = -1;
        while (bytes >= 1024 && prefix + 1 < prefixes.length()) {
            bytes /= 1024;
            prefix++;
        }
        return prefix < 0 ? String.format(Locale.ROOT, "%.0f B", bytes)
            : String.format(Locale.ROOT, "%.1f %ciB", bytes, prefixes.charAt(prefix));
    }

    /** The unsigned reading of 64 bits. */
    static double unsigned(long bits) {
        return bits < 0 ? bits + 0x1p64 : bits;
    }

    /** A part of a whole, such as "12.5%"; nothing when there is no whole. */
    static String percent(long part, long whole) {
        return whole == 0 ? "" : String.format(Locale.ROOT, "%.1f%%", 100.0 * part / whole);
    }
}
