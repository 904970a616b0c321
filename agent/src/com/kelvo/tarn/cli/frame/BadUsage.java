package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.output.Page;
import java.io.IOException;
import java.util.Objects;
import java.util.Set;
import java.util.stream.Stream;
import picocli.CommandLine.IParameterExceptionHandler;
import picocli.CommandLine.Model.ArgSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.UnmatchedArgumentException;
import picocli.CommandLine;

/** Tells in one line what is wrong with a command line, and where to read what is right. */
public final class BadUsage implements IParameterExceptionHandler {
    private static final Set<Class<?>> NUMBERS = Set.of(int.class, Integer.class);

    @Override
    public int handleParseException(ParameterException exception, String[] given) {
        // What is wrong may be the host's description or the file that is to be made.
        boolean rightlyUsed = exception.getCause() instanceof IllegalArgumentException
            || exception.getCause() instanceof IOException;
        String hint = rightlyUsed ? ""
            : " (try '" + exception.getCommandLine().getCommandSpec().qualifiedName() + " --help')";
        Page.complain(exception.getCommandLine().getErr(), complaint(exception) + hint);
        return exitStatus(exception.getCommandLine(), given);
    }

    /**
     * {@return the exit status of the command at fault; where the fault stands before it, of the first that is named}
     *
     * @param atFault the command
     * @param given the command line
     */
    public static int exitStatus(CommandLine atFault, String... given) {
        return Stream.of(given).map(atFault.getSubcommands()::get).filter(Objects::nonNull).findFirst().orElse(atFault)
            .getCommandSpec().exitCodeOnInvalidInput();
    }

    private static String complaint(ParameterException exception) {
        if (exception instanceof UnmatchedArgumentException) {
            return complaint((UnmatchedArgumentException) exception, exception.getCommandLine());
        }
        ArgSpec argument = exception.getArgSpec();
        if (argument != null && exception.getValue() != null && NUMBERS.contains(argument.type())) {
            String name = argument.isOption() ? ((OptionSpec) argument).longestName() : argument.paramLabel();
            return name + ": '" + exception.getValue()
                + (exception.getValue().matches("[+-]?\\d+") ? "' is out of range" : "' is not a number");
        }
        return exception.getMessage();
    }

    /** Names only the first surplus argument, and no value of an option: it may be a password. */
    private static String complaint(UnmatchedArgumentException exception, CommandLine command) {
        if (command.getCommandName().equals("authenticate")) {
            return "authenticate takes a user; the password is asked for";
        }
        String given = exception.getUnmatched().get(0);
        String what = exception.isUnknownOption() ? "unknown option"
            : command.getSubcommands().isEmpty() ? "surplus argument" : "unknown command";
        return what + " '" + (exception.isUnknownOption() ? given.replaceFirst("=.*", "") : given) + "'"
            + exception.getSuggestions().stream().filter(known -> known.charAt(0) == given.charAt(0)).findFirst()
                .map(known -> " (did you mean " + known + "?)").orElse("");
    }
}
