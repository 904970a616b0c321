package com.kelvo.tarn.cli;

import java.io.PrintWriter;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Function;
import java.util.stream.Collectors;

/** A table for people: a heading, then one line per row, with texts aligned to the left and numbers to the right. */
final class Table<R> {
    private static final class Column<R> {
        private final String heading;
        private final boolean right;
        private final Function<R, Object> cell;

        private Column(String heading, boolean right, Function<R, Object> cell) {
            this.heading = heading;
            this.right = right;
            this.cell = cell;
        }
    }

    private final List<Column<R>> columns = new ArrayList<>();
    private String note = "";

    Table<R> text(String heading, Function<R, Object> cell) {
        columns.add(new Column<>(heading, false, cell));
        return this;
    }

    Table<R> number(String heading, Function<R, Object> cell) {
        columns.add(new Column<>(heading, true, cell));
        return this;
    }

    /** A counter of 64 bits without a sign. */
    Table<R> unsigned(String heading, Function<R, Long> cell) {
        return number(heading, row -> Long.toUnsignedString(cell.apply(row)));
    }

    /** An unsigned number of bytes, exactly and in a readable unit. */
    Table<R> bytes(String heading, Function<R, Long> cell) {
        return unsigned(heading, cell).number("", row -> Units.bytes(Units.unsigned(cell.apply(row))));
    }

    /** A line under the table. */
    Table<R> note(String text) {
        note = text;
        return this;
    }

    void print(List<R> rows, PrintWriter out) {
        List<List<String>> lines = new ArrayList<>();
        lines.add(columns.stream().map(column -> column.heading).collect(Collectors.toList()));
        for (R row : rows) {
            lines.add(columns.stream().map(column -> cell(column, row)).collect(Collectors.toList()));
        }
        int[] widths = new int[columns.size()];
        for (List<String> line : lines) {
            for (int i = 0; i < widths.length; i++) {
                widths[i] = Math.max(widths[i], line.get(i).length());
            }
        }
        for (List<String> line : lines) {
            StringBuilder text = new StringBuilder();
            for (int i = 0; i < widths.length; i++) {
                String padding = " ".repeat(widths[i] - line.get(i).length());
                text.append(columns.get(i).right ? padding + line.get(i) : line.get(i) + padding).append("  ");
            }
            out.println(text.toString().stripTrailing());
        }
        if (!note.isEmpty()) {
            out.println(note);
        }
    }

    private static <R> String cell(Column<R> column, R row) {
        return Page.printable(String.valueOf(column.cell.apply(row)));
    }

    /** Pairs of a label and its value, one a line. */
    static void labels(PrintWriter out, Object... pairs) {
        int width = 0;
        for (int i = 0; i < pairs.length; i += 2) {
            width = Math.max(width, pairs[i].toString().length());
        }
        for (int i = 0; i < pairs.length; i += 2) {
            out.println((pairs[i] + ":" + " ".repeat(width - pairs[i].toString().length() + 1) + pairs[i + 1])
                .stripTrailing());
        }
    }
}
