package com.kelvo.tarn.cli.san;

import java.sql.Connection;
import java.sql.PreparedStatement;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.ArrayList;
import java.util.Collection;
import java.util.Collections;
import java.util.List;

/**
 * The storage network as its hosts have told it: a database of SQLite or PostgreSQL. What goes wrong with it is a
 * {@link StoreException}.
 */
public final class Store implements AutoCloseable {
    /** Makes something of a row. */
    @FunctionalInterface
    public interface Row<R> {
        /**
         * {@return what it makes}
         *
         * @param row the result, standing at the row
         * @throws SQLException as the driver does
         */
        R read(ResultSet row) throws SQLException;
    }

    /** Works with the database. */
    @FunctionalInterface
    interface Work<R> {
        R on(Connection connection) throws SQLException;
    }

    /** How many rows come at a time, where a server sends them. */
    private static final int FETCHED = 10_000;
    /** About how many values one query asks. */
    static final int ASKED = 256;

    private final Dialect dialect;
    private final Connection connection;

    private final boolean isWritten;

    private Store(Dialect dialect, boolean isWritten) throws SQLException {
        this.dialect = dialect;
        this.isWritten = isWritten;
        connection = dialect.connect(isWritten);
        try {
            new Schema(dialect, connection).require(isWritten);
        } catch (SQLException | RuntimeException unusable) {
            connection.close();
            throw unusable;
        }
    }

    /**
     * {@return a store that is asked, all of whose answers are of one moment}
     *
     * @param name its file, or its URL
     */
    public static Store open(String name) {
        Dialect dialect = Dialect.of(name);
        if (!dialect.exists()) {
            throw new StoreException(dialect.name() + ": there is no such store; san load makes one", null);
        }
        return connect(dialect, false);
    }

    /**
     * {@return the name of a store, which may be there or not}
     *
     * @param name a file, or a URL that can be one of a store
     */
    public static String named(String name) {
        if (name.isEmpty()) {
            throw new StoreException("no store is named", null);
        }
        Dialect.of(name);
        return name;
    }

    /** The store of that name, to write to; it is made where there is none. */
    static Store openToWrite(String name) {
        return connect(Dialect.of(name), true);
    }

    private static Store connect(Dialect dialect, boolean isWritten) {
        try {
            return new Store(dialect, isWritten);
        } catch (SQLException failed) {
            throw dialect.failure(failed);
        }
    }

    /** Another connection to the same, for another thread. */
    Store again() {
        return connect(dialect, isWritten);
    }

    /** What puts the numbers in a column of a group together, for {@link #numbers}: it is rows that take the time. */
    String joined(String column) {
        return dialect.joined(column);
    }

    /** The numbers that were put together; none for null. */
    static long[] numbers(String joined) {
        if (joined == null) {
            return new long[0];
        }
        long[] numbers = new long[(int) joined.chars().filter(each -> each == ',').count() + 1];
        int place = 0;
        for (int i = 0; i < joined.length(); i++) { // there may be millions, which need no texts of their own
            if (joined.charAt(i) == ',') {
                place++;
            } else {
                numbers[place] = 10 * numbers[place] + Character.digit(joined.charAt(i), 10);
            }
        }
        return numbers;
    }

    int writers(int processors) {
        return dialect.writers(processors);
    }

    /** Has the question marks of a statement stand for these values. */
    static void bind(PreparedStatement statement, Object... values) throws SQLException {
        for (int i = 0; i < values.length; i++) {
            statement.setObject(i + 1, values[i]);
        }
    }

    /**
     * {@return what the rows of a query come to}
     *
     * @param <R> what each comes to
     * @param sql a query in words that both systems know
     * @param row makes something of each row
     * @param values what its question marks stand for
     */
    public <R> List<R> query(String sql, Row<R> row, Object... values) {
        return work(database -> {
            List<R> found = new ArrayList<>();
            try (PreparedStatement statement = database.prepareStatement(sql)) {
                statement.setFetchSize(FETCHED);
                bind(statement, values);
                try (ResultSet rows = statement.executeQuery()) {
                    while (rows.next()) {
                        found.add(row.read(rows));
                    }
                }
            }
            return found;
        });
    }

    /** The number in a column of the row; null where there is none. */
    static Long number(ResultSet row, String column) throws SQLException {
        long number = row.getLong(column);
        return row.wasNull() ? null : (Long) number;
    }

    /**
     * {@return what the rows come to of a query about many values, which is asked for some of them at a time}
     *
     * @param <R> what each comes to
     * @param sql a query in which "(:these)" stands for the values, once or more often
     * @param row makes something of each row
     * @param values any number of texts or of numbers
     */
    public <R> List<R> queryAbout(String sql, Row<R> row, Collection<?> values) {
        List<R> found = new ArrayList<>();
        int times = sql.split("\\(:these\\)", -1).length - 1;
        List<Object> all = new ArrayList<>(values);
        for (int from = 0; from < all.size(); from += ASKED) {
            List<Object> some = all.subList(from, Math.min(from + ASKED, all.size()));
            String marks = "(" + String.join(", ", Collections.nCopies(some.size(), "?")) + ")";
            found.addAll(query(sql.replace("(:these)", marks), row, Collections.nCopies(times, some).stream()
                .flatMap(List::stream).toArray()));
        }
        return found;
    }

    /** What comes of working with the database, whose failures are the store's. */
    <R> R work(Work<R> work) {
        try {
            return work.on(connection);
        } catch (SQLException failed) {
            throw dialect.failure(failed);
        }
    }

    /** The same, done wholly or not at all. */
    <R> R transaction(Work<R> work) {
        return work(database -> dialect.transaction(database, work));
    }

    @Override
    public void close() {
        if (isWritten) {
            dialect.leave(connection);
        }
        try {
            connection.close();
        } catch (SQLException gone) {
            // what it was asked has been answered
        }
    }
}
