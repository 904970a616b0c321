package com.kelvo.tarn.cli.output;

import java.io.PrintWriter;
import java.util.Locale;

/** How far a long work has come: one line on the terminal that standard error is, written over and over. */
public final class Progress {
    private static final long INTERVAL = 200_000_000;
    private static final int BAR = 30;
    private static final String ERASED = "\r\u001b[K";

    private final PrintWriter err;
    private final int columns;
    private final long start = System.nanoTime();
    private long total;
    private long done;
    private long shownAt = start;
    private boolean isShown;

    /**
     * Shows nothing where standard error is no terminal. The property "tarn.errorColumns", of whoever started the
     * virtual machine, is its width.
     *
     * @param err standard error
     */
    public Progress(PrintWriter err) {
        this.err = err;
        columns = "dumb".equals(System.getenv("TERM")) ? 0 : Integer.getInteger("tarn.errorColumns", 0);
    }

    /** {@return whether anybody sees it, so that it is worth while to find out how much there is to do} */
    public boolean isSeen() {
        return columns > 0;
    }

    /**
     * Sets how much there is to do.
     *
     * @param all how many steps
     */
    public void expect(long all) {
        total = all;
    }

    /** One step more is done. */
    public void advance() {
        done++;
        long now = System.nanoTime();
        if (isSeen() && now - shownAt >= INTERVAL) {
            shownAt = now;
            show((now - start) / 1e9);
        }
    }

    private void show(double seconds) {
        double rate = done / seconds;
        int filled = (int) (BAR * Math.min(done, total) / Math.max(total, 1));
        String line = String.format(
            Locale.ROOT, "[%s%s] %d of %d, %.0f/s, %.0f s left", "#".repeat(filled), " ".repeat(BAR - filled), done,
            total, rate, Math.max(0, total - done) / rate);
        err.write(ERASED + (line.length() < columns ? line : line.substring(0, columns - 1)));
        err.flush();
        isShown = true;
    }

    /**
     * Writes a line of its own about something.
     *
     * @param message what is wrong
     */
    public void complain(String message) {
        erase();
        Page.complain(err, message);
        err.flush();
    }

    /** Takes the line away. */
    public void erase() {
        if (isShown) {
            err.write(ERASED);
            err.flush();
            isShown = false;
        }
    }
}
