package com.kelvo.tarn.cli.anonymous;

import java.io.ByteArrayOutputStream;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.function.UnaryOperator;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** What the answers of SCSI devices become. Each byte of which nothing says what it is is replaced. */
final class Pages {
    private static final Pattern NAME_STRING = Pattern.compile("(naa|eui)\\.([0-9A-Fa-f]+)(.*)", Pattern.DOTALL);

    private static final int HEADER = 4; // of a page: what device, which page, and how many bytes follow

    private final Words words;
    private final Identifiers identifiers;
    private final UnaryOperator<String> product;

    /** With what a maker's text becomes. */
    Pages(Words words, Identifiers identifiers, UnaryOperator<String> product) {
        this.words = words;
        this.identifiers = identifiers;
        this.product = product;
    }

    /** {@return what stands for the bytes, in hexadecimal like them} */
    String of(Kind kind, String hexadecimal) {
        byte[] page = bytes(hexadecimal);
        if (page == null) {
            return words.each(hexadecimal);
        }
        replace(kind, page);
        return text(page, hexadecimal);
    }

    /** {@return the bytes that a text in hexadecimal stands for, which may have blanks between them; else null} */
    static byte[] bytes(String hexadecimal) {
        ByteArrayOutputStream bytes = new ByteArrayOutputStream(hexadecimal.length() / 2);
        for (int i = 0; i < hexadecimal.length(); i++) {
            if (hexadecimal.charAt(i) != ' ') {
                int upper = Character.digit(hexadecimal.charAt(i), 16);
                int lower = ++i < hexadecimal.length() ? Character.digit(hexadecimal.charAt(i), 16) : -1;
                if (upper < 0 || lower < 0) {
                    return null;
                }
                bytes.write(upper << 4 | lower);
            }
        }
        return bytes.toByteArray();
    }

    /** In hexadecimal, with blanks between them where the model has such. */
    static String text(byte[] bytes, String model) {
        boolean isApart = model.length() == 0 || model.indexOf(' ') >= 0;
        StringBuilder text = new StringBuilder(3 * bytes.length);
        for (byte each : bytes) {
            text.append(isApart && text.length() > 0 ? " " : "").append(Character.forDigit(each >> 4 & 15, 16))
                .append(Character.forDigit(each & 15, 16));
        }
        return text.toString();
    }

    private void replace(Kind kind, byte[] page) {
        switch (kind) {
        case BITS:
            break;
        case INQUIRY:
            // Vendor, product and revision; what the vendor likes, mostly serial numbers; versions of standards; again.
            maker(page, 8, 36);
            unknown(page, 36, 56);
            unknown(page, 74, page.length);
            break;
        case INQUIRY_00:
            unknown(page, codes(page, end(page, 3)), page.length);
            break;
        case INQUIRY_83:
            designators(page, end(page, 2));
            unknown(page, end(page, 2), page.length);
            break;
        case DIAGNOSTIC_A0:
            // Eight bytes, then places of drives in numbers.
            unknown(page, HEADER, HEADER + 8);
            places(page, end(page, 2));
            unknown(page, end(page, 2), page.length);
            break;
        case LOG_3B:
            unknown(page, parameters(page, end(page, 2)), page.length);
            break;
        case INQUIRY_80:
        case INQUIRY_C0:
            unknown(page, HEADER, page.length);
            break;
        default:
            unknown(page, 0, page.length);
        }
    }

    /** Where a page ends whose length stands in the bytes from there to the end of its header. */
    private static int end(byte[] page, int lengthAt) {
        if (page.length < HEADER) {
            return 0;
        }
        int length = 0;
        for (int i = lengthAt; i < HEADER; i++) {
            length = length << 8 | Byte.toUnsignedInt(page[i]);
        }
        return Math.min(HEADER + length, page.length);
    }

    /** Where the codes of the pages end that a device has, which ascend. */
    private static int codes(byte[] page, int end) {
        int at = Math.min(HEADER, end);
        while (at < end && (at == HEADER || Byte.toUnsignedInt(page[at]) > Byte.toUnsignedInt(page[at - 1]))) {
            at++;
        }
        return at;
    }

    /** Of drives: channel, which has five bits, identifier, tray and slot. What is none of such is unknown. */
    private void places(byte[] page, int end) {
        for (int at = HEADER + 8; at < end; at += 4) {
            if ((page[at] & 0xE0) != 0) {
                unknown(page, at, Math.min(at + 4, end));
            }
        }
    }

    private void maker(byte[] page, int start, int end) {
        put(page, start, product.apply(text(page, start, Math.min(end, page.length))));
    }

    /** Run by run of what is not blank: text word by word, all else byte by byte. */
    private void unknown(byte[] page, int start, int end) {
        int limit = Math.min(end, page.length);
        for (int from = start; from < limit;) {
            int to = from;
            boolean isText = true;
            while (to < limit && page[to] != 0 && page[to] != ' ') {
                isText = isText && page[to] > ' ' && page[to] < 0x7F;
                to++;
            }
            if (isText) {
                put(page, from, words.each(text(page, from, to)));
            } else {
                words.bytes(page, from, to);
            }
            from = to + 1;
        }
    }

    private static String text(byte[] page, int start, int end) {
        return start >= end ? "" : new String(page, start, end - start, StandardCharsets.ISO_8859_1);
    }

    private static void put(byte[] page, int at, String text) {
        byte[] bytes = text.getBytes(StandardCharsets.ISO_8859_1);
        for (int i = 0; i < bytes.length; i++) {
            page[at + i] = bytes[i];
        }
    }

    /** Each has a header of four bytes: how it is written, what it is, and at last its length. */
    private void designators(byte[] page, int end) {
        int at = HEADER;
        while (at + HEADER <= end && at + HEADER + Byte.toUnsignedInt(page[at + 3]) <= end) {
            int start = at + HEADER;
            int next = start + Byte.toUnsignedInt(page[at + 3]);
            designator(page, page[at] & 15, page[at + 1] & 15, start, next);
            at = next;
        }
        unknown(page, at, end);
    }

    private void designator(byte[] page, int writtenAs, int type, int start, int end) {
        int length = end - start;
        boolean isBinary = writtenAs == 1;
        if (type == 1) {
            unknown(page, start + 8, end); // behind the vendor, whose names are registered
        } else if (type == 2 && isBinary && (length == 8 || length == 12 || length == 16)) {
            identifier(page, start, end, identifiers::eui);
        } else if (type == 3 && isBinary && (length == 8 || length == 16)) {
            identifier(page, start, end, identifiers::naa);
        } else if (type == 8) {
            put(page, start, nameString(text(page, start, end)));
        } else if (type < 4 || type > 6 || length != 4) { // those are numbers of ports and groups
            unknown(page, start, end);
        }
    }

    private void identifier(byte[] page, int start, int end, UnaryOperator<String> replaced) {
        byte[] bytes = Arrays.copyOfRange(page, start, end);
        System.arraycopy(bytes(replaced.apply(text(bytes, "00"))), 0, page, start, bytes.length);
    }

    private String nameString(String text) {
        Matcher name = NAME_STRING.matcher(text);
        int digits = name.matches() ? name.group(2).length() : 0;
        return digits != 16 && digits != 32 ? words.each(text)
            : name.group(1) + "." + (name.group(1).equals("naa") ? identifiers.naa(name.group(2))
                                     : identifiers.eui(name.group(2))) + words.each(name.group(3));
    }

    private static final int DRIVER_VERSION = 0x8200;
    private static final int ERRORS_BY_INITIATOR = 0x8160;

    /** Each has a header of four bytes: its code, one that controls it, and its length. {@return where they end} */
    private int parameters(byte[] page, int end) {
        int at = Math.min(HEADER, end);
        while (at + HEADER <= end && at + HEADER + Byte.toUnsignedInt(page[at + 3]) <= end) {
            int code = Byte.toUnsignedInt(page[at]) << 8 | Byte.toUnsignedInt(page[at + 1]);
            int start = at + HEADER;
            at = start + Byte.toUnsignedInt(page[at + 3]);
            if (code == DRIVER_VERSION) {
                maker(page, start, at);
            } else {
                unknown(page, Math.min(start + bytesOfNumbers(code), at), at);
            }
        }
        return at;
    }

    private static int bytesOfNumbers(int code) {
        boolean isDrive = (code & 0xF000) == 0xC000;
        boolean isCounter = code == 0x0030 || code >= 0x8101 && code <= 0x8421;
        return isDrive ? 36 : code == ERRORS_BY_INITIATOR ? 128 : isCounter ? 4 : 0;
    }
}
