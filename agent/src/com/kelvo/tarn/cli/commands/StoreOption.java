package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.TarnOptions;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Spec;

/** Which store a command is about. */
final class StoreOption {
    @Spec(Spec.Target.MIXEE)
    private CommandSpec spec;

    @Option(names = "--db", paramLabel = "FILE|URL", description = "The store: a file of SQLite, or the URL of a "
            + "database of PostgreSQL, postgresql://SERVER/DATABASE. Without it, the one that the environment "
            + "variable TARN_DB names. A password is taken from PGPASSWORD or ~/.pgpass.")
    private String database;

    /** Such a command asks no host. */
    void refuseHost(TarnOptions tarn) {
        if (tarn.host() != null || tarn.hba().any()) {
            throw refusal("--host and the options for device names do not go with san, which asks a store");
        }
    }

    /** What names the store. */
    String database() {
        String named = database != null ? database : System.getenv().getOrDefault("TARN_DB", "");
        if (named.isEmpty()) {
            throw refusal("no store is named: --db FILE or TARN_DB does that");
        }
        return named;
    }

    private ParameterException refusal(String message) {
        return new ParameterException(spec.commandLine(), message);
    }
}
