package com.kelvo.tarn.cli.output;

import java.math.BigDecimal;
import java.math.RoundingMode;

/** Numbers as people read them. */
public final class Units {
    /** Bytes in a sector, of disk geometries and partition tables alike. */
    public static final int SECTOR = 512;

    private Units() {
    }

    /**
     * {@return bytes in the unit that leaves one to four digits before the point, such as "68.3 GiB"}
     *
     * @param bytes any number of them
     */
    public static String bytes(double bytes) {
        String prefixes = "KMGTPE";
        int prefix = -1;
        while (bytes >= 1024 && prefix + 1 < prefixes.length()) {
            bytes /= 1024;
            prefix++;
        }
        return prefix < 0 ? Math.round(bytes) + " B" : decimal(bytes, 1) + " " + prefixes.charAt(prefix) + "iB";
    }

    /**
     * {@return the unsigned reading of 64 bits, as near as a double comes}
     *
     * @param bits the 64 bits
     */
    public static double unsigned(long bits) {
        return bits < 0 ? bits + 0x1p64 : bits;
    }

    /**
     * {@return a counter without a sign; null for one with all bits set, which is not kept}
     *
     * @param bits the counter's 64 bits
     */
    public static String counter(long bits) {
        return bits == -1 ? null : Long.toUnsignedString(bits);
    }

    /**
     * {@return a share, such as "12.5%"; empty when there is no whole}
     *
     * @param part of the whole
     * @param whole in the same unit
     */
    public static String percent(double part, double whole) {
        return whole == 0 ? "" : decimal(100 * part / whole, 1) + "%";
    }

    /**
     * {@return the time in seconds, to the thousandth}
     *
     * @param nanoseconds the time
     */
    public static String seconds(long nanoseconds) {
        return decimal(nanoseconds / 1e9, 3);
    }

    /**
     * {@return the number with so many digits after the point} A thousand rows of String.format take too long.
     *
     * @param number any
     * @param digits how many
     */
    public static String decimal(double number, int digits) {
        return BigDecimal.valueOf(number).setScale(digits, RoundingMode.HALF_UP).toPlainString();
    }
}
