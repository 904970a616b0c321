package com.kelvo.tarn.cli.metrics;

import com.kelvo.tarn.cli.output.Page;
import java.math.BigDecimal;
import java.util.LinkedHashMap;
import java.util.Map;

/** Families of metrics in the text format of Prometheus, in the order in which they were first named. */
final class Exposition {
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

        private void write(StringBuilder out) {
            out.append("# HELP ").append(name).append(' ').append(help).append('\n');
            out.append("# TYPE ").append(name).append(' ').append(type).append('\n');
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

    /** Each family that has a sample, after what it is. */
    String text() {
        StringBuilder out = new StringBuilder();
        families.values().stream().filter(family -> !family.samples.isEmpty()).forEach(family -> family.write(out));
        return out.toString();
    }

    private static String escaped(String value) {
        return Page.printable(value).replace("\\", "\\\\").replace("\"", "\\\"");
    }
}
