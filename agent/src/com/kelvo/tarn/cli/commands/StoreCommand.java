package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.san.StoreException;
import java.io.IOException;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;

/** A command that is about the store of the storage network, and no host. */
abstract class StoreCommand extends TableCommand {
    @Option(names = "--db", paramLabel = "FILE|URL", description = "The store: a file of SQLite, or the URL of a "
            + "database of PostgreSQL, postgresql://SERVER/DATABASE. Without it, the one that the environment "
            + "variable TARN_DB names. A password is taken from PGPASSWORD or ~/.pgpass.")
    private String database;

    @Override
    protected final void chooseHost() {
        if (tarn().host() != null || tarn().hba().any()) {
            throw refusal("--host and the options for device names do not go with san, which asks a store");
        }
    }

    /** What names the store. */
    final String database() {
        String named = database != null ? database : System.getenv().getOrDefault("TARN_DB", "");
        if (named.isEmpty()) {
            throw refusal("no store is named: --db FILE or TARN_DB does that");
        }
        return named;
    }

    @Override
    public final Answer ask() {
        try {
            return askStore();
        } catch (StoreException unusable) {
            // Rightly used: it is the store's fault.
            throw new ParameterException(spec().commandLine(), unusable.getMessage(), new IOException(unusable));
        }
    }

    /** What the store answers. */
    abstract Answer askStore();
}
