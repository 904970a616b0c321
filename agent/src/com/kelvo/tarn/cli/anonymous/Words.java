package com.kelvo.tarn.cli.anonymous;

import java.math.BigInteger;
import java.util.HashMap;
import java.util.Map;
import java.util.Set;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.IntStream;

/**
 * Pseudonyms of words: letters become letters of the same case, digits digits, other characters those that are as long
 * in UTF-8. What stands between words stays. Different words become different ones.
 */
final class Words {
    private static final Pattern WORD = Pattern.compile("[A-Za-z0-9\\x{80}-\\x{10FFFF}]+");

    /** Of a word that is replaced at once: as numbers, those of the largest characters have at most 512 bits. */
    private static final int PART = 24;
    private static final int MOST_KNOWN = 200_000;
    private static final int FIRST_BYTE = 0x200000; // beyond all characters

    /** Ranges of characters that become each other. Bytes that are no UTF-8 stand in the lower half of surrogates. */
    private enum Alphabet {
        DIGIT('0', '9'), LETTER('a', 'z'), SIGN(0x80, 0xBF), LATIN(0xC0, 0x17F), TWO_BYTES(0x180, 0x7FF),
        THREE_BYTES(0x800, 0xD7FF), HIGH(0xD800, 0xDC7F), LONE_BYTE(0xDC80, 0xDCFF), LOW(0xDD00, 0xDFFF),
        THREE_BYTES_MORE(0xE000, 0xFFFF), FOUR_BYTES(0x10000, 0x10FFFF), BYTE(FIRST_BYTE, FIRST_BYTE + 0xFD);

        private final int first;
        private final int last;

        Alphabet(int first, int last) {
            this.first = first;
            this.last = last;
        }

        private static Alphabet of(int character) {
            for (Alphabet alphabet : values()) {
                if (alphabet.first <= character && character <= alphabet.last) {
                    return alphabet;
                }
            }
            throw new IllegalArgumentException("no character of a word: " + character);
        }
    }

    private final Permutation permutation;
    private final Map<String, String> known = new HashMap<>();

    Words(Permutation permutation) {
        this.permutation = permutation;
    }

    /** The text with a pseudonym for each word. */
    String each(String text) {
        return WORD.matcher(text).replaceAll(found -> Matcher.quoteReplacement(word(found.group())));
    }

    /** The text with a pseudonym for each word that does not stay. */
    String eachBut(Set<String> staying, String text) {
        return WORD.matcher(text).replaceAll(found -> Matcher.quoteReplacement(whole(staying, found.group())));
    }

    /** The text itself when it stays, else one with other words, which is none of those that stay. */
    String whole(Set<String> staying, String text) {
        String replaced = text;
        if (!staying.contains(text)) {
            do { // goes round among the texts that do not stay, and so takes no two to the same
                replaced = each(replaced);
            } while (staying.contains(replaced));
        }
        return replaced;
    }

    private String word(String word) {
        String pseudonym = known.get(word);
        if (pseudonym == null) {
            if (known.size() >= MOST_KNOWN) {
                known.clear();
            }
            int[] replaced = replaced(word.codePoints().toArray());
            pseudonym = new String(replaced, 0, replaced.length);
            known.put(word, pseudonym);
        }
        return pseudonym;
    }

    /** Replaces bytes that are no text; none of them is or becomes a zero or a blank. */
    void bytes(byte[] bytes, int start, int end) {
        int[] replaced = replaced(IntStream.range(start, end).map(
            i -> FIRST_BYTE + Byte.toUnsignedInt(bytes[i]) - (Byte.toUnsignedInt(bytes[i]) > ' ' ? 2 : 1)).toArray());
        for (int i = start; i < end; i++) {
            int place = replaced[i - start] - FIRST_BYTE;
            bytes[i] = (byte) (place + (place + 1 >= ' ' ? 2 : 1));
        }
    }

    private int[] replaced(int[] characters) {
        int[] replaced = new int[characters.length];
        for (int start = 0; start < characters.length; start += PART) {
            replacePart(characters, start, Math.min(PART, characters.length - start), replaced);
        }
        return replaced;
    }

    /** As a number whose digits are the characters' places in their alphabets. */
    private void replacePart(int[] characters, int start, int length, int[] into) {
        StringBuilder form = new StringBuilder("word");
        for (int i = Math.max(0, start - PART); i < start; i++) { // else a part would show where it comes again
            form.appendCodePoint(lower(characters[i]) % FIRST_BYTE);
        }
        form.append('\0').append(start).append(' ');
        BigInteger number = BigInteger.ZERO;
        BigInteger limit = BigInteger.ONE;
        Alphabet[] alphabets = new Alphabet[length];
        for (int i = 0; i < length; i++) {
            int character = lower(characters[start + i]);
            Alphabet alphabet = Alphabet.of(character);
            BigInteger size = BigInteger.valueOf(alphabet.last - alphabet.first + 1L);
            number = number.multiply(size).add(BigInteger.valueOf(character - alphabet.first));
            limit = limit.multiply(size);
            alphabets[i] = alphabet;
            form.append((char) ('A' + alphabet.ordinal()));
        }
        BigInteger rest = permutation.of(form.toString(), number, limit);
        for (int i = length - 1; i >= 0; i--) {
            BigInteger size = BigInteger.valueOf(alphabets[i].last - alphabets[i].first + 1L);
            BigInteger[] parts = rest.divideAndRemainder(size);
            int character = alphabets[i].first + parts[1].intValue();
            boolean isUpper = lower(characters[start + i]) != characters[start + i];
            into[start + i] = isUpper ? character - 'a' + 'A' : character;
            rest = parts[0];
        }
    }

    /** Cases are kept apart from letters, so that a name has one pseudonym in whatever case. */
    private static int lower(int character) {
        return character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character;
    }
}
