package com.kelvo.tarn.cli.output;

import java.util.ArrayList;
import java.util.Comparator;
import java.util.List;
import java.util.Locale;
import java.util.Objects;
import java.util.function.Function;
import java.util.function.Predicate;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What a table of rates has in its columns, by which its rows can be chosen and put in order. */
public final class RateTable<R> {
    private static final class Figure<R> {
        private final String heading;
        private final int digits;
        private final Function<R, ? extends Number> value;
        private final Predicate<R> isTrouble;

        private Figure(String heading, int digits, Function<R, ? extends Number> value, Predicate<R> isTrouble) {
            this.heading = heading;
            this.digits = digits;
            this.value = value;
            this.isTrouble = isTrouble;
        }

        private Double of(R row) {
            Number number = value.apply(row);
            return number == null ? null : number.doubleValue();
        }

        private String shown(R row) {
            Double number = of(row);
            return number == null ? null : (isTrouble.test(row) ? Page.TROUBLE : "") + Units.decimal(number, digits);
        }
    }

    private final String subject;
    private final Function<R, String> name;
    private final List<Figure<R>> figures = new ArrayList<>();

    /**
     * A table that only names its rows so far.
     *
     * @param subject what stands over the names
     * @param name what a row is about
     */
    public RateTable(String subject, Function<R, String> name) {
        this.subject = subject;
        this.name = name;
    }

    /**
     * Adds a column of numbers.
     *
     * @param heading what stands over it
     * @param digits how many people see after the point
     * @param value the number in a row of it; null when it is not known
     * @param isTrouble whether it is marked in a row
     * @return this table
     */
    public RateTable<R> figure(String heading, int digits, Function<R, ? extends Number> value,
                               Predicate<R> isTrouble) {
        figures.add(new Figure<>(heading, digits, value, isTrouble));
        return this;
    }

    /**
     * Adds a column of numbers of which none is trouble.
     *
     * @param heading what stands over it
     * @param digits how many people see after the point
     * @param value the number in a row of it; null when it is not known
     * @return this table
     */
    public RateTable<R> figure(String heading, int digits, Function<R, ? extends Number> value) {
        return figure(heading, digits, value, row -> false);
    }

    /** {@return the headings} */
    public List<String> columns() {
        return Stream.concat(Stream.of(subject), figures.stream().map(figure -> figure.heading))
            .collect(Collectors.toList());
    }

    /**
     * {@return the rows, the largest numbers of a column or the first names first, unknown ones last}
     *
     * @param rows all
     * @param column by which, in letters of any case; null or of another table: as they are
     */
    public List<R> sorted(List<R> rows, String column) {
        if (column == null || columns().stream().noneMatch(column::equalsIgnoreCase)) {
            return rows;
        }
        Comparator<R> order = figures.stream().filter(figure -> figure.heading.equalsIgnoreCase(column)).findFirst()
            .map(figure -> Comparator.<R, Double>comparing(figure::of, Comparator.nullsLast(Comparator.reverseOrder())))
            .orElse(Comparator.comparing(row -> name.apply(row).toLowerCase(Locale.ROOT)));
        return rows.stream().sorted(order).collect(Collectors.toList());
    }

    /**
     * {@return whether a number in the row is not zero, or none is known}
     *
     * @param row any
     */
    public boolean isNonzero(R row) {
        List<Double> known = figures.stream().map(figure -> figure.of(row)).filter(Objects::nonNull)
            .collect(Collectors.toList());
        return known.isEmpty() || known.stream().anyMatch(number -> number != 0);
    }

    /**
     * {@return the table of these rows}
     *
     * @param rows those that are shown
     * @param lead what programs see first in each: pairs of a heading and a value
     */
    public Table<R> of(List<R> rows, Object... lead) {
        Table<R> table = new Table<>(rows);
        for (int i = 0; i < lead.length; i += 2) {
            Object value = lead[i + 1];
            table.exact((String) lead[i], row -> value);
        }
        table.text(subject, name);
        figures.forEach(figure -> table.number(figure.heading, figure.value, figure::shown));
        return table;
    }
}
