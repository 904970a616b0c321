package com.kelvo.tarn.cli.commands;

import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Spec;

/** {@code san}: the commands that are about all hosts of a storage network. */
@Command(name = "san", synopsisSubcommandLabel = "COMMAND",
         description = "The storage network of many hosts, from a store of what their descriptions tell.",
         footer = "The store is a file of SQLite or, by its URL, a database of PostgreSQL.")
public final class SanCommand implements Runnable {
    /** Each is served by the class of its name: "load" by SanLoadCommand. */
    public static final List<String> COMMANDS = List.of(
        "load", "check", "who", "impact", "diff", "hosts", "units", "ports", "map", "metrics");

    @Spec
    private CommandSpec spec;

    @Override
    public void run() {
        throw new ParameterException(spec.commandLine(), "Missing required subcommand");
    }
}
