package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.cli.answers.Counter;
import java.math.BigDecimal;
import java.math.RoundingMode;
import java.time.Duration;

/** Numbers as people read them. */
public final class Units {
    private Units() {
    }

    /**
     * {@return a counter of bytes in a readable unit; null when it is not kept}
     *
     * @param bytes the counter
     */
    public static String bytes(Counter bytes) {
        return bytes.isKept() ? bytes(bytes.value().doubleValue()) : null;
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
     * {@return a share, such as "12.5%"; empty when there is no whole}
     *
     * @param part of the whole
     * @param whole in the same unit
     */
    public static String percent(double part, double whole) {
        return whole == 0 ? "" : decimal(100 * part / whole, 1) + "%";
    }

    /**
     * {@return the time in seconds, to the thousandth; null when it is not kept}
     *
     * @param nanoseconds the time
     */
    public static String seconds(Counter nanoseconds) {
        return !nanoseconds.isKept() ? null
            : new BigDecimal(nanoseconds.value(), 9).setScale(3, RoundingMode.HALF_UP).toPlainString();
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

    /**
     * {@return a span of time in its largest unit, rounded down, such as "41 days"}
     *
     * @param age any; less than none is none
     */
    public static String age(Duration age) {
        long seconds = Math.max(0, age.toSeconds());
        return seconds < 60 ? count(seconds, "second") : seconds < 3600 ? count(seconds / 60, "minute")
            : seconds < 86400 ? count(seconds / 3600, "hour") : count(seconds / 86400, "day");
    }

    /**
     * {@return a span of time to the thousandth, such as "2.5 seconds"}
     *
     * @param time the span
     */
    public static String seconds(Duration time) {
        String number = BigDecimal.valueOf(time.toMillis(), 3).stripTrailingZeros().toPlainString();
        return number + (number.equals("1") ? " second" : " seconds");
    }

    private static String count(long number, String noun) {
        return number + " " + noun + (number == 1 ? "" : "s");
    }
}
