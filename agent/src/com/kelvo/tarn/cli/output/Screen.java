package com.kelvo.tarn.cli.output;

import java.io.PrintWriter;
import java.io.StringWriter;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Consumer;

/** A terminal on which each page takes the place of the one before it. */
public final class Screen {
    private static final String START = "\u001b[H";
    private static final String REST_OF_LINE = "\u001b[K";
    private static final String REST_OF_SCREEN = "\u001b[J";

    private final int lines = Integer.getInteger("tarn.lines", 24);

    /**
     * Writes a page over the one before it, as much of it as there is room for.
     *
     * @param out the terminal
     * @param content writes the page
     */
    public void show(PrintWriter out, Consumer<Page> content) {
        StringWriter written = new StringWriter();
        Page page = new Page(written, Terminal.ofStandardOutput());
        content.accept(page);
        page.flush();
        List<String> shown = new ArrayList<>(List.of(written.toString().split("\n")));
        if (shown.size() > lines - 1) {
            int more = shown.size() - (lines - 2);
            shown = new ArrayList<>(shown.subList(0, Math.max(0, lines - 2)));
            shown.add("and " + more + " lines more");
        }
        out.print(START);
        shown.forEach(line -> out.print(line + REST_OF_LINE + "\n"));
        out.print(REST_OF_SCREEN);
        out.flush();
    }
}
