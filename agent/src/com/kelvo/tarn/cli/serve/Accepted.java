package com.kelvo.tarn.cli.serve;

import java.util.List;
import java.util.Locale;

/** What a header like Accept says, by the quality that it gives each. */
final class Accepted {
    private final List<String> values;

    /** The header's values; null where it was not sent. */
    Accepted(List<String> values) {
        this.values = values == null ? List.of() : values;
    }

    /** Whether a thing is named, and not as one that is refused. */
    boolean names(String thing) {
        return quality(thing) > 0;
    }

    /** Whether a thing is named, and no less wanted than another. */
    boolean prefers(String thing, String other) {
        return names(thing) && quality(thing) >= quality(other);
    }

    /** From 0 to 1; of what is named several times, with different parameters, the most. */
    private double quality(String thing) {
        double most = 0;
        for (String value : values) {
            for (String element : value.split(",")) {
                String[] parts = element.toLowerCase(Locale.ROOT).split(";");
                if (parts[0].strip().equals(thing)) {
                    most = Math.max(most, quality(parts));
                }
            }
        }
        return most;
    }

    private static double quality(String[] parts) {
        for (int i = 1; i < parts.length; i++) {
            String parameter = parts[i].strip();
            if (parameter.startsWith("q=")) {
                return parameter.matches("q=(0(\\.\\d{0,3})?|1(\\.0{0,3})?)")
                    ? Double.parseDouble(parameter.substring(2)) : 0;
            }
        }
        return 1;
    }
}
