package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.Resources;
import java.sql.Connection;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.sql.Statement;
import java.util.HashSet;
import java.util.Locale;
import java.util.Set;

/** The tables and views of a store, which later versions change in numbered steps. */
final class Schema {
    private static final int VERSION = 1;
    private static final String TABLE = "tarn_store";

    private final Dialect dialect;
    private final Connection connection;

    Schema(Dialect dialect, Connection connection) {
        this.dialect = dialect;
        this.connection = connection;
    }

    /** Refuses what is no store of this version; what is to be written to is made one, if it can be. */
    void require(boolean isWritten) throws SQLException {
        if (isCurrent()) {
            return;
        }
        if (!isWritten) {
            throw refusal(version() == 0 ? "there is nothing in it; san load makes it a store"
                                         : "it is of an earlier version, which the next san load brings up to date");
        }
        dialect.transaction(connection, writing -> {
            dialect.lockSchema(writing);
            if (!isCurrent()) { // another may have made it so meanwhile
                for (int version = version(); version < VERSION; version++) {
                    apply(version + 1);
                }
            }
            return null;
        });
    }

    private boolean isCurrent() throws SQLException {
        int version = version();
        if (version > VERSION) {
            throw refusal("it was made by a later version of this program");
        }
        return version == VERSION;
    }

    /** 0 where there is nothing yet. */
    private int version() throws SQLException {
        Set<String> tables = new HashSet<>();
        try (Statement statement = connection.createStatement()) {
            try (ResultSet rows = statement.executeQuery(dialect.tables())) {
                while (rows.next()) {
                    tables.add(rows.getString(1).toLowerCase(Locale.ROOT));
                }
            }
            if (tables.isEmpty()) {
                return 0;
            }
            if (!tables.contains(TABLE)) {
                throw refusal("it is the database of another program");
            }
            try (ResultSet rows = statement.executeQuery("SELECT version FROM " + TABLE)) {
                if (!rows.next()) {
                    throw refusal("it does not tell its version");
                }
                return rows.getInt(1);
            }
        }
    }

    private void apply(int version) throws SQLException {
        String script = Resources.text(Schema.class, "schema-" + version + ".sql")
            .replace("${id}", dialect.numbering());
        Dialect.execute(connection, script.strip().split(";\n"));
        Dialect.execute(connection, "DELETE FROM " + TABLE,
                        "INSERT INTO " + TABLE + " (version) VALUES (" + version + ")");
    }

    private StoreException refusal(String reason) {
        return new StoreException(dialect.name() + ": " + reason, null);
    }
}
