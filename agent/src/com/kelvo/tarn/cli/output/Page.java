package com.kelvo.tarn.cli.output;

import java.io.PrintWriter;
import java.io.Writer;
import java.util.Locale;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Lines for people. Control characters in what a host tells would steer the terminal, and bidirectional controls put
 * its letters in another order, so they are shown escaped. What stands after two exclamation marks is in trouble, and
 * coloured where there are colours.
 */
public final class Page extends PrintWriter {
    /** Which exclamation marks are ours, and not those of a name; never printed. No character. */
    static final char MARK = '\ufdd0';

    /** Stands before what is in trouble. */
    public static final String TROUBLE = MARK + "!! ";

    /** To the end of the table's cell or of the list's item. */
    private static final Pattern MARKED = Pattern.compile(MARK + "(!! .*?(?=  |[,;]|$))");
    private static final Pattern STEERING = Pattern.compile("[\\p{Cc}\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069]");
    private static final String RED = "\u001b[31m";
    private static final String PLAIN = "\u001b[0m";

    private final Terminal terminal;

    /**
     * A page that is written to.
     *
     * @param out where the lines go
     * @param terminal how wide they may be, and whether there are colours
     */
    public Page(Writer out, Terminal terminal) {
        super(out);
        this.terminal = terminal;
    }

    @Override
    public void print(String text) {
        String shown = printable(text);
        String coloured = terminal.hasColour() ? MARKED.matcher(shown).replaceAll(RED + "$1" + PLAIN) : shown;
        super.print(coloured.indexOf(MARK) < 0 ? coloured : coloured.replace(String.valueOf(MARK), ""));
    }

    /** {@return how many characters a line has room for} */
    public int width() {
        return terminal.width();
    }

    /**
     * Prints a line; where the terminal is too narrow for it, several, of which all but the first are indented.
     *
     * @param text the line
     */
    public void printFolded(String text) {
        printFolded("", "  ", text);
    }

    /**
     * Prints a line after a margin; where the terminal is too narrow for it, several, broken at blanks.
     *
     * @param firstMargin stands before the first
     * @param margin stands before the others
     * @param text the line
     */
    public void printFolded(String firstMargin, String margin, String text) {
        String rest = printable(text);
        String before = firstMargin;
        for (int room = width() - before.length(); TerminalWidth.of(rest) > room; room = width() - before.length()) {
            int fitting = TerminalWidth.fitting(rest, room);
            int end = rest.lastIndexOf(' ', fitting);
            if (end <= 0) {
                end = rest.indexOf(' ', Math.max(fitting, 1));
            }
            if (end < 0) {
                break;
            }
            println(before + rest.substring(0, end));
            rest = rest.substring(end + 1);
            before = margin;
        }
        println(before + rest);
    }

    /**
     * Writes one line, whatever the message holds.
     *
     * @param err standard error
     * @param message what is wrong
     */
    public static void complain(PrintWriter err, String message) {
        err.println("tarn: " + message.strip().replaceAll("\\s*\\R\\s*", " "));
    }

    /**
     * {@return the text with "\x1b" and the like in place of control characters, bidirectional ones among them}
     *
     * @param text any
     */
    public static String printable(String text) {
        return STEERING.matcher(text).replaceAll(found -> Matcher.quoteReplacement(
            String.format(Locale.ROOT, found.group().charAt(0) < 0x100 ? "\\x%02x" : "\\u%04x",
                          (int) found.group().charAt(0))));
    }
}
