package com.kelvo.tarn.cli.san;

import java.sql.Connection;
import java.sql.PreparedStatement;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.ArrayList;
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

    private final Dialect dialect;
    private final Connection connection;
    private final boolean toWrite;

    private Store(Dialect dialect, boolean toWrite) throws SQLException {
        this.dialect = dialect;
        this.toWrite = toWrite;
        connection = dialect.connect(toWrite);
        try {
            new Schema(dialect, connection).require(toWrite);
        } catch (SQLException | RuntimeException unusable) {
            connection.close();
            throw unusable;
        }
    }

    /**
     * {@return a store to be asked}
     *
     * @param name its file, or its URL
     */
    public static Store open(String name) {
        Dialect dialect = Dialect.of(name);
        if (!dialect.exists()) {
            throw new StoreException(dialect.name() + ": there is no such store; san load makes it", null);
        }
        return connect(dialect, false);
    }

    /**
     * {@return a store to be written to} It is made where there is none.
     *
     * @param name its file, or its URL
     */
    static Store openToWrite(String name) {
        return connect(Dialect.of(name), true);
    }

    private static Store connect(Dialect dialect, boolean toWrite) {
        try {
            return new Store(dialect, toWrite);
        } catch (SQLException failed) {
            throw dialect.failure(failed);
        }
    }

    /** Another connection to the same, for another thread. */
    Store again() {
        return connect(dialect, toWrite);
    }

    int writers(int processors) {
        return dialect.writers(processors);
    }

    /**
     * {@return what the rows of a query come to}
     *
     * @param <R> what each comes to
     * @param sql a query in words that both systems know
     * @param row makes something of each row
     * @param parameters what its question marks stand for
     */
    public <R> List<R> query(String sql, Row<R> row, Object... parameters) {
        return work(database -> {
            List<R> found = new ArrayList<>();
            try (PreparedStatement statement = database.prepareStatement(sql)) {
                for (int i = 0; i < parameters.length; i++) {
                    statement.setObject(i + 1, parameters[i]);
                }
                try (ResultSet rows = statement.executeQuery()) {
                    while (rows.next()) {
                        found.add(row.read(rows));
                    }
                }
            }
            return found;
        });
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
        if (toWrite) {
            dialect.leave(connection);
        }
        try {
            connection.close();
        } catch (SQLException gone) {
            // what it was asked has been answered
        }
    }
}
