package com.kelvo.tarn.cli.frame;

import java.util.List;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Spec;

/** An array that is asked about as well. */
public final class ArrayOption {
    @Spec(Spec.Target.MIXEE)
    private CommandSpec spec;

    private List<String> arguments = List.of();

    @Option(names = "--array", arity = "4", paramLabel = "CONTROLLER1 CONTROLLER2 VENDOR PRODUCT",
            hideParamSyntax = true, description = "Also this array's drives, named as the command array has it.")
    private void setArguments(List<String> given) {
        if (given.size() > 4) {
            throw new ParameterException(spec.commandLine(), "--array goes once, with four arguments");
        }
        arguments = given;
    }

    /** {@return the four arguments of the command array; none when no array was named} */
    public List<String> arguments() {
        return arguments;
    }
}
