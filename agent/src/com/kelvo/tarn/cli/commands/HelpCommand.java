package com.kelvo.tarn.cli.commands;

import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;
import picocli.CommandLine;

/** {@code help}: the same as a command's option of that name. */
@Command(name = "help", description = "The help of a command, or of all.")
public final class HelpCommand implements Runnable {
    @Spec
    private CommandSpec spec;

    @Parameters(arity = "0..1", paramLabel = "COMMAND", description = "Only of this one.")
    private String command;

    @Override
    public void run() {
        CommandLine tarn = spec.root().commandLine();
        CommandLine shown = command == null ? tarn : tarn.getSubcommands().get(command);
        if (shown == null) {
            throw new ParameterException(spec.commandLine(), "unknown command '" + command + "'");
        }
        shown.usage(spec.commandLine().getOut());
    }
}
