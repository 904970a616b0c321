package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.replay.ReplayHost;
import java.io.File;
import picocli.CommandLine;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ScopeType;

/** The options that go with every command, before it or after it. */
public abstract class TarnOptions {
    @Option(names = "--host", paramLabel = "FILE", scope = ScopeType.INHERIT,
            description = "The host description that answers. Without it, the one that the environment variable "
                + "TARN_HOST names; without that, the built-in one.")
    private File host;

    @Option(names = "--json", scope = ScopeType.INHERIT,
            description = "Print one JSON document with the members result, log and exception.")
    private boolean json;

    @Option(names = "--csv", scope = ScopeType.INHERIT,
            description = "Print the table as comma-separated values, complete and exact.")
    private boolean csv;

    @Option(names = {"-h", "--help"}, usageHelp = true, scope = ScopeType.INHERIT, description = "Show this help.")
    private boolean help;

    @Mixin
    private HbaOptions hba;

    private final LibraryLog log = new LibraryLog();

    /** Lets the host that was asked for answer. The command is the one that a complaint is about. */
    final void chooseHost(CommandLine command) {
        String path = host != null ? host.getPath() : System.getenv().getOrDefault("TARN_HOST", "");
        if (host == null && path.isEmpty()) {
            return;
        }
        if (path.isEmpty()) {
            throw new ParameterException(command, "--host: no file named");
        }
        load(path, command);
    }

    /** Lets the host of that description answer. */
    static void load(String path, CommandLine command) {
        try {
            ReplayHost.load(path);
        } catch (IllegalArgumentException unreadable) {
            throw new ParameterException(command, unreadable.getMessage(), unreadable);
        }
    }

    final boolean json() {
        return json;
    }

    final boolean csv() {
        return csv;
    }

    /** The description that was named on the command line, or null. */
    final File host() {
        return host;
    }

    /** The choices for host bus adapters that were made before the command. */
    final HbaOptions hba() {
        return hba;
    }

    final LibraryLog log() {
        return log;
    }
}
