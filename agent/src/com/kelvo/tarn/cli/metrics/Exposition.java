package com.kelvo.tarn.cli.metrics;

import com.kelvo.tarn.cli.output.Page;
import java.math.BigDecimal;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.Set;
import java.util.stream.Stream;

/** Families of metrics for Prometheus, in the order in which they were first named. */
public final class Exposition {
    /** Metrics of one name, told apart by their labels. */
    static final class Family {
        private final String name;
        private final String type;
        private final String help;
        /** The labels of samples that there may be more of. */
        private final Set<String> labelled = new HashSet<>();
        private final StringBuilder lines = new StringBuilder();

        private Family(String name, String type, String help) {
            this.name = name;
            this.type = type;
            this.help = help;
        }

        /** Of two samples with the same labels the first counts. */
        Family sample(Number value, String labels) {
            return labelled.add(labels) ? distinct(value, labels.isEmpty() ? new String[0] : new String[] {labels})
                : this;
        }

        /** A sample whose labels, in several parts, no other has; they are not remembered. */
        Family distinct(Number value, String... labels) {
            lines.append(name);
            int before = lines.length();
            for (String part : labels) {
                lines.append(lines.length() == before ? '{' : ',').append(part);
            }
            lines.append(labels.length == 0 ? " " : "} ").append(value instanceof BigDecimal
                ? ((BigDecimal) value).stripTrailingZeros().toPlainString() : value.toString()).append('\n');
            return this;
        }

        private void write(StringBuilder out, String familyName) {
            out.append("# HELP ").append(familyName).append(' ').append(help).append('\n');
            out.append("# TYPE ").append(familyName).append(' ').append(type).append('\n');
            out.append(lines);
        }
    }

    /** In characters, for what a family is. */
    private static final int FAMILY_ROOM = 256;

    private final Map<String, Family> families = new LinkedHashMap<>();

    /** Labels as a sample has them: pairs of a name and a value. Several such are joined by commas. */
    static String labels(Object... pairs) {
        StringBuilder text = new StringBuilder();
        for (int i = 0; i < pairs.length; i += 2) {
            text.append(i == 0 ? "" : ",").append(pairs[i]).append("=\"").append(escaped(pairs[i + 1].toString()))
                .append('"');
        }
        return text.toString();
    }

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
        StringBuilder out = new StringBuilder(length());
        told().forEach(family -> family.write(out, family.name));
        return out.toString();
    }

    /** {@return the same as OpenMetrics has it: it calls a family of counters without their ending, and has an end} */
    public String openMetrics() {
        StringBuilder out = new StringBuilder(length());
        told().forEach(family -> family.write(out, family.name.replaceFirst("_total$", "")));
        return out.append("# EOF\n").toString();
    }

    private Stream<Family> told() {
        return families.values().stream().filter(family -> family.lines.length() != 0);
    }

    /** About that of the whole text, in characters. */
    private int length() {
        return families.values().stream().mapToInt(family -> family.lines.length() + FAMILY_ROOM).sum();
    }

    private static String escaped(String value) {
        return isPlain(value) ? value : Page.printable(value).replace("\\", "\\\\").replace("\"", "\\\"");
    }

    /** Whether nothing has to be escaped, as in nearly all. */
    private static boolean isPlain(String value) {
        for (int i = 0; i < value.length(); i++) {
            char at = value.charAt(i);
            if (at < ' ' || at > '~' || at == '"' || at == '\\') {
                return false;
            }
        }
        return true;
    }
}
