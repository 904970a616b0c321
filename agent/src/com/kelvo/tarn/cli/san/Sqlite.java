package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.Reasons;
import java.io.IOException;
import java.nio.file.FileAlreadyExistsException;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.nio.file.attribute.FileAttribute;
import java.nio.file.attribute.PosixFilePermissions;
import java.sql.Connection;
import java.sql.DriverManager;
import java.sql.SQLException;
import java.util.Map;
import java.util.Properties;
import java.util.concurrent.locks.LockSupport;

/** A file. */
final class Sqlite extends Dialect {
    /** How long one who wants to write waits for another, in milliseconds. */
    private static final long PATIENCE = 10_000;
    private static final long RETRY = 50;
    private static final long NANOSECONDS = 1_000_000;
    private static final int BUSY = 5;
    /** The room for pages of the file, in KiB; a load does not take more for more hosts. */
    private static final int WRITER_CACHE = 16_384;
    private static final int READER_CACHE = 32_768;
    /** After how many pages what was written goes to its place; a page that hosts after each other change, once. */
    private static final int CHECKPOINT = 4_000;

    /** By SQLite's primary result codes. */
    private static final Map<Integer, String> REASONS = Map.of(
        BUSY, "another program keeps it locked", 6, "another program keeps it locked", 8, "it can only be read",
        10, "its device reports an error", 11, "it is damaged", 13, "there is no room left for it",
        14, "it cannot be opened",
        26, "it is no SQLite database");

    private static final FileAttribute<?> OWNERS =
        PosixFilePermissions.asFileAttribute(PosixFilePermissions.fromString("rw-------"));

    private final String file;

    Sqlite(String file) {
        this.file = file;
    }

    @Override
    String name() {
        return file;
    }

    private Path path() {
        try {
            return Path.of(file).toAbsolutePath();
        } catch (InvalidPathException impossible) {
            throw new StoreException(file + ": no name of a file", impossible);
        }
    }

    @Override
    boolean exists() {
        return Files.exists(path());
    }

    @Override
    Connection connect(boolean isWritten) throws SQLException {
        if (Files.isDirectory(path())) {
            throw new StoreException(file + ": it is a folder, no SQLite database", null);
        }
        if (isWritten) {
            make();
        }
        Properties properties = new Properties();
        properties.setProperty("busy_timeout", String.valueOf(PATIENCE));
        properties.setProperty("foreign_keys", "true");
        if (!isWritten) {
            properties.setProperty("open_mode", "1"); // for reading
        }
        // As a URI, in which a name may hold anything.
        Connection connection =
            DriverManager.getConnection("jdbc:sqlite:file:" + path().toUri().getRawPath(), properties);
        try {
            execute(connection, "PRAGMA cache_size = " + (isWritten ? -WRITER_CACHE : -READER_CACHE));
            if (isWritten) {
                keepLog(connection);
                execute(connection, "PRAGMA synchronous = NORMAL", "PRAGMA wal_autocheckpoint = " + CHECKPOINT);
            } else {
                execute(connection, "BEGIN");
            }
            return connection;
        } catch (SQLException failed) {
            connection.close();
            throw failed;
        }
    }

    /** Has changes go into a log beside the file. Here the system itself does not wait for another one's change. */
    private static void keepLog(Connection connection) throws SQLException {
        for (long end = System.nanoTime() + PATIENCE * NANOSECONDS;;) {
            try {
                execute(connection, "PRAGMA journal_mode = WAL");
                return;
            } catch (SQLException failed) {
                if ((failed.getErrorCode() & 0xff) != BUSY || System.nanoTime() - end > 0) {
                    throw failed;
                }
                LockSupport.parkNanos(RETRY * NANOSECONDS);
            }
        }
    }

    /** Makes an empty file that only its owner may read, as recordings are, where there is none. */
    private void make() {
        Path path = path();
        try {
            Files.createFile(path, OWNERS);
        } catch (FileAlreadyExistsException there) {
            // it keeps its rights
        } catch (NoSuchFileException nowhere) {
            throw new StoreException(file + ": there is no folder " + path.getParent(), nowhere);
        } catch (IOException failed) {
            throw new StoreException(file + ": it cannot be made: " + Reasons.of(failed), failed);
        }
    }

    /**
     * At once in turn: two who have read could not both go on to write. The driver's own commit would begin the next
     * one.
     */
    @Override
    void begin(Connection connection) throws SQLException {
        execute(connection, "BEGIN IMMEDIATE");
    }

    @Override
    void commit(Connection connection) throws SQLException {
        execute(connection, "COMMIT");
    }

    @Override
    void rollBack(Connection connection) throws SQLException {
        execute(connection, "ROLLBACK");
    }

    @Override
    String driver() {
        return "sqlite-jdbc.jar";
    }

    @Override
    String numbering() {
        return "INTEGER PRIMARY KEY";
    }

    @Override
    void lockSchema(Connection connection) {
        // whoever writes is alone
    }

    @Override
    String tables() {
        return "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite%'";
    }

    @Override
    String joined(String column) {
        return "group_concat(" + column + ")";
    }

    @Override
    int writers(int processors) {
        return 1;
    }

    /** Whoever may only read the file needs no others beside it then; while somebody else has it open, it stays. */
    @Override
    void leave(Connection connection) {
        try {
            execute(connection, "PRAGMA busy_timeout = 0", "PRAGMA journal_mode = DELETE");
        } catch (SQLException inUse) {
            // the last one does it
        }
    }

    @Override
    String reason(SQLException failed) {
        return REASONS.get(failed.getErrorCode() & 0xff);
    }
}
