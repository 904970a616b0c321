package com.kelvo.tarn.cli.output;

/** The terminal that standard output is, if it is one. */
public final class Terminal {
    /** A file or a pipe: as wide as needed, and without colours. */
    public static final Terminal NONE = new Terminal(Integer.MAX_VALUE, false);

    private final int width;
    private final boolean colour;

    private Terminal(int width, boolean colour) {
        this.width = width;
        this.colour = colour;
    }

    /** {@return what whoever started the virtual machine found} The property "tarn.columns" is a terminal's width. */
    public static Terminal ofStandardOutput() {
        int columns = Integer.getInteger("tarn.columns", 0);
        boolean plain = !System.getenv().getOrDefault("NO_COLOR", "").isEmpty() || "dumb".equals(System.getenv("TERM"));
        return columns <= 0 ? NONE : new Terminal(columns, !plain);
    }

    /** {@return whether it is one, and no file or pipe} */
    public boolean isTerminal() {
        return this != NONE;
    }

    int width() {
        return width;
    }

    boolean hasColour() {
        return colour;
    }
}
