package com.kelvo.tarn.cli.anonymous;

import java.math.BigInteger;
import java.util.HashMap;
import java.util.Locale;
import java.util.Map;
import java.util.function.UnaryOperator;
import java.util.regex.Pattern;

/**
 * Pseudonyms of world-wide names and other identifiers of the same authorities, in hexadecimal. Which kind it is and
 * the identifier of the company stay.
 */
final class Identifiers {
    private static final Pattern NONE = Pattern.compile("0+|[fF]+");
    private static final int MOST_KNOWN = 200_000;

    private final Permutation permutation;
    private final Map<String, String> known = new HashMap<>();

    Identifiers(Permutation permutation) {
        this.permutation = permutation;
    }

    /**
     * {@return another world-wide name}
     *
     * @param digits 16 of them
     */
    String worldWide(String digits) {
        return NONE.matcher(digits).matches() ? digits : remembered(digits, this::otherWorldWide);
    }

    private String remembered(String digits, UnaryOperator<String> replaced) {
        if (known.size() >= MOST_KNOWN) {
            known.clear();
        }
        String found = known.get(digits);
        if (found == null) {
            found = replaced.apply(digits);
            known.put(digits, found);
        }
        return found;
    }

    private String otherWorldWide(String digits) {
        switch (digits.charAt(0)) {
        case '1':
        case '2':
            // The ports and the node of an adapter often differ in the number before the company alone.
            return digits.charAt(0) + numbered(digits.substring(1, 4), digits.substring(4, 10), digits)
                + digits.substring(4, 10) + other("low " + digits.substring(4, 10), digits.substring(10), digits);
        case '3':
            return withOthersBehind(1, digits);
        case '5':
            return withOthersBehind(7, digits);
        default:
            return withOthersBehind(6, digits); // the company comes first
        }
    }

    /** Another one that may be as long as a logical unit's, of the NAA form. */
    String naa(String digits) {
        return digits.length() == 16 ? worldWide(digits)
            : remembered(digits, all -> withOthersBehind(all.charAt(0) == '6' ? 7 : 1, all));
    }

    /**
     * Another one of the EUI-64 form, which may be within a longer one. One of 16 digits is as a world-wide name: the
     * name of a disk does not tell them apart.
     */
    String eui(String digits) {
        if (digits.length() != 32) {
            return digits.length() == 16 ? worldWide(digits) : withOthersBehind(6, digits);
        }
        String company = digits.substring(16, 22);
        String replaced = other("eui " + company, digits.substring(0, 16) + digits.substring(22), digits);
        return replaced.substring(0, 16) + company + replaced.substring(16);
    }

    private String withOthersBehind(int staying, String digits) {
        String before = digits.substring(0, staying);
        return before + other(digits.length() + " " + before, digits.substring(staying), digits);
    }

    /** Zero stays: it says that there is no number. */
    private String numbered(String number, String company, String digits) {
        BigInteger value = new BigInteger(number, 16);
        return value.signum() == 0 ? number
            : text(permutation.of("number " + company.toLowerCase(Locale.ROOT), value.subtract(BigInteger.ONE),
                                  BigInteger.valueOf(0xFFF)).add(BigInteger.ONE), 3, digits);
    }

    private String other(String domain, String part, String digits) {
        return text(permutation.of("identifier " + domain.toLowerCase(Locale.ROOT), new BigInteger(part, 16),
                                   BigInteger.ONE.shiftLeft(4 * part.length())), part.length(), digits);
    }

    /** In capital letters when the old one has such. */
    private static String text(BigInteger value, int length, String digits) {
        String text = value.toString(16);
        String padded = "0".repeat(length - text.length()) + text;
        return digits.equals(digits.toLowerCase(Locale.ROOT)) ? padded : padded.toUpperCase(Locale.ROOT);
    }
}
