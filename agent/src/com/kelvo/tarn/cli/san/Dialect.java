package com.kelvo.tarn.cli.san;

import java.sql.Connection;
import java.sql.SQLException;
import java.sql.Statement;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** What sets one database system apart from another. */
abstract class Dialect {
    private static final Pattern URL = Pattern.compile("\\s*(jdbc:[a-z0-9]*:?|[a-z][a-z0-9+.-]*:(?=//)).*",
                                                       Pattern.CASE_INSENSITIVE | Pattern.DOTALL);

    /** The dialect of a store by the name that the user gives it: a URL of PostgreSQL, or else a file of SQLite. */
    static Dialect of(String store) {
        if (Postgresql.isMeantBy(store)) {
            return new Postgresql(store);
        }
        Matcher url = URL.matcher(store);
        if (url.matches()) { // it may tell a password
            throw new StoreException(url.group(1) + "...: a store is a file of SQLite or the URL of a database of "
                                     + "PostgreSQL, postgresql://SERVER/DATABASE, whose password PGPASSWORD or "
                                     + "~/.pgpass tells", null);
        }
        return new Sqlite(store);
    }

    /** What messages call the store; never with a password. */
    abstract String name();

    /** Whether there can be something to connect to; else it would be made. */
    abstract boolean exists();

    /** Connects to it; without being written to, it is seen as it is at one moment. */
    abstract Connection connect(boolean isWritten) throws SQLException;

    /** The jar that connects to it. */
    abstract String driver();

    /** Begins a transaction that is to write. */
    abstract void begin(Connection connection) throws SQLException;

    abstract void commit(Connection connection) throws SQLException;

    /** Takes back what the transaction did, if it is still there. */
    abstract void rollBack(Connection connection) throws SQLException;

    /** How a column is declared that numbers the rows. */
    abstract String numbering();

    /** Lets no one else change the schema while the transaction of this connection runs. */
    abstract void lockSchema(Connection connection) throws SQLException;

    /** A query for the names of all tables and views. */
    abstract String tables();

    /** What puts the numbers of a group together, with commas between them. */
    abstract String joined(String column);

    /** How many may write at once. */
    abstract int writers(int processors);

    /** To be called as a connection that has written ends. */
    abstract void leave(Connection connection);

    /** What has happened, in a few words; null when the system's own are to be shown. */
    abstract String reason(SQLException failed);

    /** What comes of work that is done wholly or not at all. */
    final <R> R transaction(Connection connection, Store.Work<R> work) throws SQLException {
        begin(connection);
        boolean isDone = false;
        try {
            R result = work.on(connection);
            commit(connection);
            isDone = true;
            return result;
        } finally {
            if (!isDone) {
                try {
                    rollBack(connection);
                } catch (SQLException gone) {
                    // what failed before tells more
                }
            }
        }
    }

    static void execute(Connection connection, String... statements) throws SQLException {
        try (Statement statement = connection.createStatement()) {
            for (String each : statements) {
                statement.execute(each);
            }
        }
    }

    final StoreException failure(SQLException failed) {
        String reason = String.valueOf(failed.getMessage()).startsWith("No suitable driver")
            ? "its driver is missing, " + driver() : reason(failed);
        return new StoreException(name() + ": " + (reason == null ? firstLine(failed) : reason), failed);
    }

    private static String firstLine(SQLException failed) {
        String message = String.valueOf(failed.getMessage());
        return message.lines().findFirst().orElse(message).strip();
    }
}
