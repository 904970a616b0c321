package com.kelvo.tarn.cli.frame;

import java.time.Duration;
import java.time.temporal.ChronoUnit;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** Spans of time as options have them: 90m, 36h, 7d. */
public final class Durations {
    private static final Pattern FORM = Pattern.compile("(\\d{1,9})([smhd])");
    private static final Map<String, ChronoUnit> UNITS = Map.of(
        "s", ChronoUnit.SECONDS, "m", ChronoUnit.MINUTES, "h", ChronoUnit.HOURS, "d", ChronoUnit.DAYS);

    private Durations() {
    }

    /**
     * {@return the span of time; null when the text is none}
     *
     * @param given the text
     */
    public static Duration of(String given) {
        Matcher told = FORM.matcher(given);
        return told.matches() ? Duration.of(Long.parseLong(told.group(1)), UNITS.get(told.group(2))) : null;
    }
}
