package com.kelvo.tarn.cli.commands;

import java.util.List;
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

    @Parameters(arity = "0..*", paramLabel = "COMMAND", description = "Only of this one; \"san load\" is two words.")
    private List<String> words = List.of();

    @Override
    public void run() {
        CommandLine shown = spec.root().commandLine();
        for (String word : words) {
            shown = shown.getSubcommands().get(word);
            if (shown == null) {
                throw new ParameterException(spec.commandLine(), "unknown command '" + String.join(" ", words) + "'");
            }
        }
        shown.usage(spec.commandLine().getOut());
    }
}
