package com.kelvo.tarn.cli.san;

import java.sql.Connection;
import java.sql.PreparedStatement;
import java.sql.ResultSet;
import java.sql.SQLException;

/**
 * The storage network as its hosts have told it: a database of SQLite or PostgreSQL. What goes wrong with it is a
 * {@link StoreException}.
 */
final class Store implements AutoCloseable {
    /** Works with the database. */
    @FunctionalInterface
    interface Work<R> {
        R on(Connection connection) throws SQLException;
    }

    private final Dialect dialect;
    private final Connection connection;

    private Store(Dialect dialect) throws SQLException {
        this.dialect = dialect;
        connection = dialect.connect();
        try {
            new Schema(dialect, connection).require();
        } catch (SQLException | RuntimeException unusable) {
            connection.close();
            throw unusable;
        }
    }

    /** The store of that name, its file or its URL; it is made where there is none. */
    static Store open(String name) {
        return connect(Dialect.of(name));
    }

    private static Store connect(Dialect dialect) {
        try {
            return new Store(dialect);
        } catch (SQLException failed) {
            throw dialect.failure(failed);
        }
    }

    /** Another connection to the same, for another thread. */
    Store again() {
        return connect(dialect);
    }

    int writers(int processors) {
        return dialect.writers(processors);
    }

    /** Whether a query finds anything, with these values for its question marks. */
    boolean finds(String sql, Object... values) {
        return work(database -> {
            try (PreparedStatement statement = database.prepareStatement(sql)) {
                for (int i = 0; i < values.length; i++) {
                    statement.setObject(i + 1, values[i]);
                }
                try (ResultSet rows = statement.executeQuery()) {
                    return rows.next();
                }
            }
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
        dialect.leave(connection);
        try {
            connection.close();
        } catch (SQLException gone) {
            // what it was asked has been answered
        }
    }
}
