package com.kelvo.tarn.cli.metrics;

import com.kelvo.tarn.cli.output.Page;
import java.math.BigDecimal;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.stream.Stream;

/** Families of metrics for Prometheus, in the order in which they were first named. */
public final class Exposition {
    /** Metrics of one name, told apart by their labels. */
    static final class Family {
        private final String name;
        private final String type;
        private final String help;
        /** By their labels as they are written. */
        private final Map<String, String> samples = new LinkedHashMap<>();

        private Family(String name, String type, String help) {
            this.name = name;
            this.type = type;
            this.help = help;
        }

        /** Labels are pairs of a name and a value. Of two samples with the same labels the first counts. */
        Family sample(Number value, Object... labels) {
            StringBuilder text = new StringBuilder();
            for (int i = 0; i < labels.length; i += 2) {
                text.append(i == 0 ? "{" : ",").append(labels[i]).append("=\"")
                    .append(escaped(labels[i + 1].toString())).append('"');
            }
            String number = !(value instanceof BigDecimal) ? value.toString()
                : ((BigDecimal) value).stripTrailingZeros().toPlainString();
            samples.putIfAbsent(text.append(labels.length == 0 ? "" : "}").toString(), number);
            return this;
        }

        private void write(StringBuilder out, String familyName) {
            out.append("# HELP ").append(familyName).append(' ').append(help).append('\n');
            out.append("# TYPE ").append(familyName).append(' ').append(type).append('\n');
            samples.forEach((labels, value) -> out.append(name).append(labels).append(' ').append(value).append('\n'));
        }
    }

    private final Map<String, Family> families = new LinkedHashMap<>();

    /** A count that only grows, until it starts anew; its name ends in "_total". */
    Family counter(String name, String help) {
        return family(name, "counter", help);
    }

    Family gauge(String name, String help) {
        return family(name, "gauge", help);
    }

    private Family family(String name, String type, String help) {
        return families.computeIfAbsent(name, added -> new Family(name, type, help));
    }

    /** {@return the text format: each family that has a sample, after what it is} */
    public String text() {
        StringBuilder out = new StringBuilder();
        told().forEach(family -> family.write(out, family.name));
        return out.toString();
    }

    /** {@return the same as OpenMetrics has it: it calls a family of counters without their ending, and has an end} */
    public String openMetrics() {
        StringBuilder out = new StringBuilder();
        told().forEach(family -> family.write(out, family.name.replaceFirst("_total$", "")));
        return out.append("# EOF\n").toString();
    }

    private Stream<Family> told() {
        return families.values().stream().filter(family -> !family.samples.isEmpty());
    }

    private static String escaped(String value) {
        return Page.printable(value).replace("\\", "\\\\").replace("\"", "\\\"");
    }
}
