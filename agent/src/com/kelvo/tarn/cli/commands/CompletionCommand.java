package com.kelvo.tarn.cli.commands;

import picocli.AutoComplete;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Spec;

/** {@code completion}: what picocli makes of the commands' options. */
@Command(name = "completion", description = "The completion of this command line, for bash.",
         footer = "To use it: source <(tarn completion)")
public final class CompletionCommand implements Runnable {
    @Spec
    private CommandSpec spec;

    @Override
    public void run() {
        spec.commandLine().getOut().print(AutoComplete.bash(spec.root().name(), spec.root().commandLine()));
    }
}
