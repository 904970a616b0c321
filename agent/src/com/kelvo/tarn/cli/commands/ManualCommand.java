package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.ManualPage;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Spec;

/** {@code manual}: a {@link ManualPage}, for the build. */
@Command(name = "manual", hidden = true, description = "The manual page, made of the help of all commands.")
public final class ManualCommand implements Runnable {
    @Spec
    private CommandSpec spec;

    @Override
    public void run() {
        spec.commandLine().getOut().print(ManualPage.of(spec.root()));
    }
}
