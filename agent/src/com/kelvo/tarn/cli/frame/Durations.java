package com.kelvo.tarn.cli.frame;

import java.time.Duration;
import java.time.temporal.ChronoUnit;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParameterException;

/** Spans of time as options have them: 90m, 36h, 7d. */
final class Durations {
    private static final Pattern FORM = Pattern.compile("(\\d{1,9})([smhd])");
    private static final Map<String, ChronoUnit> UNITS = Map.of(
        "s", ChronoUnit.SECONDS, "m", ChronoUnit.MINUTES, "h", ChronoUnit.HOURS, "d", ChronoUnit.DAYS);

    private Durations() {
    }

    /** The span of time that an option of the command names; anything else is refused as bad usage. */
    static Duration of(CommandSpec command, String option, String given) {
        Matcher told = FORM.matcher(given);
        if (!told.matches()) {
            throw new ParameterException(command.commandLine(),
                                         option + ": '" + given + "' is no duration such as 90m, 36h or 7d");
        }
        return Duration.of(Long.parseLong(told.group(1)), UNITS.get(told.group(2)));
    }
}
