package com.kelvo.tarn.cli.output;

/** How many columns of a terminal a text takes: two for a wide character, none for one that joins the one before it. */
final class TerminalWidth {
    /** The first and the last of each range of wide characters, as East Asian Width has them. */
    private static final int[] WIDE = {
        0x1100, 0x115f, 0x2e80, 0x303e, 0x3041, 0xa4cf, 0xa960, 0xa97c, 0xac00, 0xd7a3, 0xf900, 0xfaff, 0xfe30, 0xfe6f,
        0xff01, 0xff60, 0xffe0, 0xffe6, 0x1f300, 0x1f64f, 0x1f680, 0x1f6ff, 0x1f900, 0x1f9ff, 0x20000, 0x3fffd};

    private TerminalWidth() {
    }

    static int of(String text) {
        return text.codePoints().map(TerminalWidth::of).sum();
    }

    /** How many characters of the text, from its start, fit into so many columns. */
    static int fitting(String text, int columns) {
        int end = 0;
        for (int used = 0; end < text.length(); end += Character.charCount(text.codePointAt(end))) {
            used += of(text.codePointAt(end));
            if (used > columns) {
                break;
            }
        }
        return end;
    }

    private static int of(int character) {
        if (character < WIDE[0]) {
            return character >= 0x300 && isJoined(character) ? 0 : 1;
        }
        for (int i = 0; i < WIDE.length; i += 2) {
            if (character >= WIDE[i] && character <= WIDE[i + 1]) {
                return 2;
            }
        }
        return isJoined(character) || character == Page.MARK ? 0 : 1;
    }

    private static boolean isJoined(int character) {
        int type = Character.getType(character);
        return type == Character.NON_SPACING_MARK || type == Character.ENCLOSING_MARK || type == Character.FORMAT;
    }
}
