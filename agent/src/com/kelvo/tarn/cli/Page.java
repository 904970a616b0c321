package com.kelvo.tarn.cli;

import java.io.PrintWriter;
import java.io.Writer;
import java.util.regex.Pattern;

/** Lines for people. Control characters in what a host tells would steer the terminal, so they are shown escaped. */
final class Page extends PrintWriter {
    private static final Pattern control = Pattern.compile("\\p{IsControl}");

    Page(Writer out) {
        super(out);
    }

    @Override
    public void print(String text) {
        super.print(printable(text));
    }

    /** The text with "\x1b" and the like in place of control characters. */
    static String printable(String text) {
        return control.matcher(text).replaceAll(found -> String.format("\\\\x%02x", (int) found.group().charAt(0)));
    }
}
