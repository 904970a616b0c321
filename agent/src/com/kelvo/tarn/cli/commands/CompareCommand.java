package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.Comparison;
import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.answers.Rates;
import com.kelvo.tarn.cli.answers.Snapshot;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.FindingWords;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.cli.output.Verdict;
import java.io.File;
import java.math.BigDecimal;
import java.math.MathContext;
import java.time.Instant;
import java.time.ZoneOffset;
import java.time.format.DateTimeFormatter;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.function.Function;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code compare}: loads two hosts one after the other, and shows their {@link Comparison}. */
@Command(name = "compare", exitCodeOnExecutionException = 2,
         description = "What changed between two descriptions of one host, what the command check finds newly and what "
             + "it finds no more.",
         footer = "What is used of a file system is no change, and neither are counters: where both descriptions say "
             + "when they were recorded, they are shown as rates. Exit status: 0 nothing changed and nothing else is "
             + "found, 1 something did or is, 2 bad usage or an unreadable description.")
public final class CompareCommand extends TableCommand {
    private static final DateTimeFormatter DAY = formatter("yyyy-MM-dd ");
    private static final DateTimeFormatter TIME = formatter("HH:mm");
    private static final DateTimeFormatter EXACT_TIME = formatter("HH:mm:ss");

    @Parameters(index = "0", paramLabel = "OLD", description = "The host's description before.")
    private File old;

    @Parameters(index = "1", paramLabel = "NEW", description = "Its description after.")
    private File now;

    /** A line of the table for programs; what is not known or not there is null. */
    private static final class Row {
        private final String change;
        private final String subject;
        private final String property;
        private final Object was;
        private final Object is;

        private Row(String change, String subject, String property, Object was, Object is) {
            this.change = change;
            this.subject = subject;
            this.property = property;
            this.was = was;
            this.is = is;
        }
    }

    /** Its arguments are the hosts. */
    @Override
    protected void chooseHost() {
        if (tarn().host() != null) {
            throw refusal("--host does not go with compare, which names both");
        }
    }

    @Override
    public Answer ask() {
        Snapshot before = snapshot(old);
        Comparison comparison = new Comparison(before, snapshot(now));
        return Answer.table(result(comparison), () -> table(comparison)).shownAs(out -> show(comparison, out))
            .withStatus(comparison.isEmpty() ? 0 : 1);
    }

    private Snapshot snapshot(File description) {
        tarn().load(description.getPath(), spec().commandLine());
        return new Snapshot(library());
    }

    private static Object result(Comparison comparison) {
        return Json.object(
            "from", result(comparison.from), "to", result(comparison.to),
            "changes", comparison.changes.stream().map(CompareCommand::result).collect(Collectors.toList()),
            "findings", Json.object("new", result(comparison.added), "cleared", result(comparison.cleared)),
            "usage", comparison.usage, "rates", comparison.rates);
    }

    private static Object result(Snapshot host) {
        return Json.object("host", host.hostName(), "recordedAt",
                           host.recordedAt == null ? null : host.recordedAt.toString());
    }

    private static Object result(Comparison.Change change) {
        return change.property == null ? Json.object("subject", change.subject, "change", change.change)
            : Json.object("subject", change.subject, "change", change.change, "property", change.property,
                          "was", change.was, "is", change.is);
    }

    private static Object result(List<Check.Finding> findings) {
        return findings.stream().map(Verdict::document).collect(Collectors.toList());
    }

    private static Table<?> table(Comparison comparison) {
        List<Row> rows = new ArrayList<>();
        comparison.changes.forEach(
            change -> rows.add(new Row(change.change, change.subject, change.property, change.was, change.is)));
        comparison.added.forEach(finding -> rows.add(
            new Row("new", finding.subject, finding.code, null, FindingWords.message(finding))));
        comparison.cleared.forEach(finding -> rows.add(
            new Row("cleared", finding.subject, finding.code, FindingWords.message(finding), null)));
        comparison.usage.forEach(used -> rows.add(new Row(
            "usage", "file system " + used.mountPoint, "usedPercent", used.usedPercentBefore, used.usedPercentAfter)));
        comparison.rates.disks.forEach(disk -> addRates(
            rows, "disk " + (disk.diskName.isEmpty() ? "" : disk.diskName + " ") + disk.instanceName, disk.reset,
            "bytesReadPerSecond", disk.bytesReadPerSecond, "bytesWrittenPerSecond", disk.bytesWrittenPerSecond,
            "busyPercent", disk.busyPercent));
        comparison.rates.processors.forEach(cpu -> addRates(
            rows, "processor " + cpu.cpuId, false, "userPercent", cpu.userPercent, "kernelPercent", cpu.kernelPercent,
            "waitPercent", cpu.waitPercent, "idlePercent", cpu.idlePercent));
        comparison.rates.ports.forEach(port -> addRates(
            rows, port.port, port.reset, "framesSentPerSecond", port.framesSentPerSecond, "framesReceivedPerSecond",
            port.framesReceivedPerSecond, "errorsPerSecond", port.errorsPerSecond));
        return new Table<>(rows).text("Change", row -> row.change).text("Subject", row -> row.subject)
            .text("Property", row -> row.property).text("Was", row -> row.was).text("Is", row -> row.is);
    }

    /** Rates are pairs of what is told and its value. */
    private static void addRates(List<Row> rows, String subject, boolean reset, Object... rates) {
        for (int i = 0; i < rates.length; i += 2) {
            rows.add(new Row("rate", subject, (String) rates[i], null, reset ? "reset" : rates[i + 1]));
        }
    }

    private static void show(Comparison comparison, Page out) {
        out.printFolded(hosts(comparison) + ", " + times(comparison.from.recordedAt, comparison.to.recordedAt));
        if (comparison.isEmpty()) {
            out.println("nothing changed");
        }
        for (Comparison.Change change : comparison.changes) {
            out.printFolded(change.property == null ? change.change + "  " + change.subject
                : change.change + "   " + change.subject + ": " + meaning(change) + change.property + " "
                    + words(change));
        }
        comparison.added.forEach(
            finding -> out.printFolded("new       " + (finding.isCritical() ? Page.TROUBLE : "") + words(finding)));
        comparison.cleared.forEach(finding -> out.printFolded("cleared   " + words(finding)));
        if (!comparison.usage.isEmpty()) {
            out.println();
            new Table<>(comparison.usage).text("File system", used -> used.mountPoint)
                .number("Used before", shown(used -> used.usedPercentBefore, CompareCommand::percent))
                .number("Used after", shown(used -> used.usedPercentAfter, CompareCommand::percent)).print(out);
        }
        show(comparison.rates, out);
    }

    private static String hosts(Comparison comparison) {
        String before = name(comparison.from);
        String after = name(comparison.to);
        return comparison.from.isSameHost(comparison.to) ? comparison.to.hostName().isBlank() ? before : after
            : "two hosts: " + before + " and " + after;
    }

    private static String name(Snapshot host) {
        return host.hostName().isBlank() ? "unnamed host" : host.hostName();
    }

    /** The day of the second only when it is another; seconds only where there are some. */
    private static String times(Instant from, Instant to) {
        if (from == null || to == null) {
            return from == null && to == null ? "recorded at unknown times"
                : from == null ? "an unknown time to " + time(to, TIME) + " UTC"
                : time(from, TIME) + " UTC to an unknown time";
        }
        DateTimeFormatter time = from.getEpochSecond() % 60 == 0 && to.getEpochSecond() % 60 == 0 ? TIME : EXACT_TIME;
        boolean sameDay = DAY.format(from).equals(DAY.format(to));
        return time(from, time) + " to " + (sameDay ? time.format(to) : time(to, time)) + " UTC";
    }

    private static String time(Instant time, DateTimeFormatter formatter) {
        return DAY.format(time) + formatter.format(time);
    }

    private static DateTimeFormatter formatter(String pattern) {
        return DateTimeFormatter.ofPattern(pattern, Locale.ROOT).withZone(ZoneOffset.UTC);
    }

    private static String words(Check.Finding finding) {
        return finding.severity + " " + finding.code + " " + finding.subject + ": " + FindingWords.message(finding);
    }

    /** What it means that an identifier changed, before its values. */
    private static String meaning(Comparison.Change change) {
        boolean identifies = change.property.equals("designator") || change.property.equals("serial");
        return identifies && change.subject.startsWith("logical unit ") ? "another volume stands behind this number: "
            : identifies && change.subject.startsWith("disk ") ? "another disk has this name: " : "";
    }

    /** Both values as the other commands show them; as they are where that would not tell them apart. */
    private static String words(Comparison.Change change) {
        String was = words(change.property, change.was);
        String is = words(change.property, change.is);
        return was.equals(is) ? plain(change.was) + " → " + plain(change.is) : was + " → " + is;
    }

    private static String words(String property, Object value) {
        return value == null ? plain(null)
            : property.equals("totalBytes") ? Units.bytes(new Counter((Long) value).value().doubleValue())
            : property.equals("totalPhysicalKB") ? Units.bytes((Long) value * 1024.0)
            : plain(PortWords.value(property, value));
    }

    /** What is not there is a dash; a text that would not be seen is in quotes. */
    private static String plain(Object value) {
        return value == null ? "-" : value.toString().isBlank() ? "\"" + value + "\"" : value.toString();
    }

    private static void show(Rates rates, Page out) {
        out.println();
        if (rates.reason != null) {
            out.println("no rates: " + rates.reason);
            return;
        }
        out.println(String.format(Locale.ROOT, "In the %.0f seconds between the two:", rates.seconds));
        List<Table<?>> tables = new ArrayList<>();
        if (!rates.disks.isEmpty()) {
            tables.add(new Table<>(rates.disks).text("Disk", disk -> disk.diskName.isEmpty() ? null : disk.diskName)
                .text("Instance", disk -> disk.instanceName)
                .number("Read B/s", told(disk -> disk.reset, disk -> disk.bytesReadPerSecond, CompareCommand::decimal))
                .number("Written B/s", told(disk -> disk.reset, disk -> disk.bytesWrittenPerSecond,
                                            CompareCommand::decimal))
                .number("Busy", told(disk -> disk.reset, disk -> disk.busyPercent, CompareCommand::percent)));
        }
        if (!rates.processors.isEmpty()) {
            tables.add(new Table<>(rates.processors).number("CPU", cpu -> cpu.cpuId)
                .number("User", shown(cpu -> cpu.userPercent, CompareCommand::percent))
                .number("Kernel", shown(cpu -> cpu.kernelPercent, CompareCommand::percent))
                .number("Wait", shown(cpu -> cpu.waitPercent, CompareCommand::percent))
                .number("Idle", shown(cpu -> cpu.idlePercent, CompareCommand::percent)));
        }
        if (!rates.ports.isEmpty()) {
            tables.add(new Table<>(rates.ports).text("Port", port -> port.port)
                .number("Frames sent/s", told(port -> port.reset, port -> port.framesSentPerSecond,
                                              CompareCommand::decimal))
                .number("Frames received/s", told(port -> port.reset, port -> port.framesReceivedPerSecond,
                                                  CompareCommand::decimal))
                .number("Errors/s", told(port -> port.reset, port -> port.errorsPerSecond,
                                         CompareCommand::significant)));
        }
        for (Table<?> table : tables) {
            if (table != tables.get(0)) {
                out.println();
            }
            table.print(out);
        }
    }

    /** A cell of a rate that may not be known. */
    private static <R> Function<R, String> shown(Function<R, Double> rate, Function<Double, String> words) {
        return told(row -> false, rate, words);
    }

    /** A cell of a rate of which the counters may have been reset. */
    private static <R> Function<R, String> told(Function<R, Boolean> reset, Function<R, Double> rate,
                                                Function<Double, String> words) {
        return row -> reset.apply(row) ? "reset" : rate.apply(row) == null ? null : words.apply(rate.apply(row));
    }

    private static String percent(double share) {
        return decimal(share) + "%";
    }

    private static String decimal(double number) {
        return Units.decimal(number, 1);
    }

    /** Errors are rare: one an hour is not to be seen in a fixed number of digits. */
    private static String significant(double number) {
        return number == 0 ? "0" : new BigDecimal(number).round(new MathContext(3)).toPlainString();
    }
}
