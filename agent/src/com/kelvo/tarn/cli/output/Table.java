package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.cli.answers.Counter;
import java.io.PrintWriter;
import java.util.ArrayList;
import java.util.Collection;
import java.util.List;
import java.util.Objects;
import java.util.function.Function;
import java.util.regex.Pattern;
import java.util.stream.Collectors;

/**
 * Rows of the same kind: for people a heading, then one line per row, with texts aligned to the left and numbers to the
 * right; for programs comma-separated values. What is not known is null: a dash for people, nothing for programs.
 */
public final class Table<R> {
    private static final String UNKNOWN = "-";
    /** What a spreadsheet computes rather than shows begins so. */
    private static final Pattern FORMULA = Pattern.compile("[=+@\t\r-]");
    private static final Pattern NUMBER = Pattern.compile("[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?");

    private static final class Column<R> {
        private final String heading;
        private final boolean right;
        /** For programs; null in a column that only people see. */
        private final Function<R, ?> exact;
        /** For people; null in a column that only programs see. */
        private final Function<R, ?> shown;

        private Column(String heading, boolean right, Function<R, ?> exact, Function<R, ?> shown) {
            this.heading = heading;
            this.right = right;
            this.exact = exact;
            this.shown = shown;
        }
    }

    private final List<R> rows;
    private final List<Column<R>> columns = new ArrayList<>();
    private String note = "";

    /**
     * A table without columns so far.
     *
     * @param rows what stands in its rows
     */
    public Table(Collection<R> rows) {
        this.rows = List.copyOf(rows);
    }

    /**
     * Adds a column of texts.
     *
     * @param heading what stands over it
     * @param cell what stands in a row of it
     * @return this table
     */
    public Table<R> text(String heading, Function<R, ?> cell) {
        return text(heading, cell, cell);
    }

    /**
     * Adds a column of texts that people see otherwise than programs.
     *
     * @param heading what stands over it
     * @param exact what programs see in a row of it; null when they see no such column
     * @param shown what people see
     * @return this table
     */
    public Table<R> text(String heading, Function<R, ?> exact, Function<R, ?> shown) {
        columns.add(new Column<>(heading, false, exact, shown));
        return this;
    }

    /**
     * Adds a column of numbers.
     *
     * @param heading what stands over it
     * @param cell what stands in a row of it
     * @return this table
     */
    public Table<R> number(String heading, Function<R, ?> cell) {
        return number(heading, cell, cell);
    }

    /**
     * Adds a column of numbers that people see otherwise than programs.
     *
     * @param heading what stands over it
     * @param exact what programs see in a row of it
     * @param shown what people see
     * @return this table
     */
    public Table<R> number(String heading, Function<R, ?> exact, Function<R, ?> shown) {
        columns.add(new Column<>(heading, true, exact, shown));
        return this;
    }

    /**
     * Adds a column that reads the number before it for people, such as "37.6 GiB".
     *
     * @param shown what people see in a row of it
     * @return this table
     */
    public Table<R> reading(Function<R, ?> shown) {
        columns.add(new Column<>("", true, null, shown));
        return this;
    }

    /**
     * Adds a column that explains the one before it to people.
     *
     * @param shown what they see in a row of it
     * @return this table
     */
    public Table<R> gloss(Function<R, ?> shown) {
        columns.add(new Column<>("", false, null, shown));
        return this;
    }

    /**
     * Adds a column that only programs see.
     *
     * @param heading what stands over it
     * @param exact what they see in a row of it
     * @return this table
     */
    public Table<R> exact(String heading, Function<R, ?> exact) {
        columns.add(new Column<>(heading, false, exact, null));
        return this;
    }

    /**
     * Adds a counter of bytes, exactly and in a readable unit.
     *
     * @param heading what stands over it
     * @param cell the counter's bits
     * @return this table
     */
    public Table<R> bytes(String heading, Function<R, Long> cell) {
        Function<R, Counter> counter = row -> new Counter(cell.apply(row));
        return number(heading, row -> counter.apply(row).text())
            .reading(row -> Objects.requireNonNullElse(Units.bytes(counter.apply(row)), ""));
    }

    /**
     * Sets the line under the table, for people.
     *
     * @param text the line
     * @return this table
     */
    public Table<R> note(String text) {
        note = text;
        return this;
    }

    /**
     * Prints it for people: as many of the columns as the page is wide enough for.
     *
     * @param out where
     */
    public void print(Page out) {
        List<Column<R>> columns = shownColumns();
        List<List<String>> lines = new ArrayList<>();
        lines.add(columns.stream().map(column -> column.heading).collect(Collectors.toList()));
        rows.forEach(row -> lines.add(
            columns.stream().map(column -> shown(column, row)).collect(Collectors.toList())));
        int[] widths = new int[columns.size()];
        for (List<String> line : lines) {
            for (int i = 0; i < widths.length; i++) {
                widths[i] = Math.max(widths[i], TerminalWidth.of(line.get(i)));
            }
        }
        int fitting = fitting(columns, widths, out.width());
        StringBuilder text = new StringBuilder();
        for (List<String> line : lines) {
            text.setLength(0);
            for (int i = 0; i < fitting; i++) {
                String cell = line.get(i);
                String blanks = " ".repeat(widths[i] - TerminalWidth.of(cell));
                text.append(columns.get(i).right ? blanks + cell : cell + blanks).append("  ");
            }
            out.println(text.toString().stripTrailing());
        }
        if (!note.isEmpty()) {
            out.printFolded(note);
        }
        List<String> leftOut = new ArrayList<>();
        for (int i = fitting; i < widths.length; i++) {
            int column = i;
            boolean trouble = lines.stream().anyMatch(line -> line.get(column).startsWith(Page.TROUBLE));
            leftOut.add((trouble ? Page.TROUBLE : "") + columns.get(i).heading);
        }
        leftOut.removeIf(String::isEmpty);
        if (!leftOut.isEmpty()) {
            out.printFolded("Left out, for the width of the terminal: " + String.join(", ", leftOut));
        }
    }

    /**
     * Prints it for people, a row as lines of a heading and a value each.
     *
     * @param out where
     */
    public void printUpright(Page out) {
        List<Column<R>> columns = shownColumns();
        int width = columns.stream().mapToInt(column -> column.heading.length()).max().orElse(0);
        for (R row : rows) {
            for (Column<R> column : columns) {
                out.println((column.heading + ":" + " ".repeat(width - column.heading.length() + 1)
                             + shown(column, row)).stripTrailing());
            }
        }
    }

    /**
     * Prints it for programs: comma-separated values as RFC 4180 has them, apart from the lines' ends.
     *
     * @param out where
     * @param raw whether cells are as they are; else what a spreadsheet would take for a formula has an apostrophe
     *     before it, and control characters are escaped
     */
    public void printCsv(PrintWriter out, boolean raw) {
        List<Column<R>> exact = exactColumns();
        out.print(exact.stream().map(column -> quoted(column.heading)).collect(Collectors.joining(",", "", "\n")));
        printCsvRows(out, raw);
    }

    /**
     * Prints what follows the headings for programs, as {@link #printCsv} does.
     *
     * @param out where
     * @param raw whether cells are as they are
     */
    public void printCsvRows(PrintWriter out, boolean raw) {
        List<Column<R>> exact = exactColumns();
        for (R row : rows) {
            out.print(exact.stream().map(column -> column.exact.apply(row))
                          .map(value -> quoted(raw ? value : safe(value))).collect(Collectors.joining(",", "", "\n")));
        }
    }

    private List<Column<R>> shownColumns() {
        return columns.stream().filter(column -> column.shown != null).collect(Collectors.toList());
    }

    private List<Column<R>> exactColumns() {
        return columns.stream().filter(column -> column.exact != null).collect(Collectors.toList());
    }

    /** How many columns from the first on fit; a column that reads the one before it goes with it. */
    private static <R> int fitting(List<Column<R>> columns, int[] widths, int room) {
        int fitting = 0;
        int used = 0;
        for (int i = 0; i < widths.length && (i == 0 || used + widths[i] <= room); i++) {
            used += widths[i] + 2;
            fitting = i + 1;
        }
        while (fitting < widths.length && fitting > 1 && columns.get(fitting).heading.isEmpty()) {
            fitting--;
        }
        return fitting;
    }

    private static <R> String shown(Column<R> column, R row) {
        Object value = column.shown.apply(row);
        return value == null ? UNKNOWN : Page.printable(value.toString());
    }

    private static String safe(Object value) {
        String text = value == null ? "" : value.toString();
        return (FORMULA.matcher(text).lookingAt() && !NUMBER.matcher(text).matches() ? "'" : "") + Page.printable(text);
    }

    private static String quoted(Object value) {
        String text = value == null ? "" : value.toString();
        return text.matches("(?s).*[\",\r\n].*") ? '"' + text.replace("\"", "\"\"") + '"' : text;
    }
}
