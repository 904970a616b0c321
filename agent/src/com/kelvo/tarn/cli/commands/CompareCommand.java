package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Comparison;
import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.answers.Rates;
import com.kelvo.tarn.cli.answers.Snapshot;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import java.io.File;
import java.util.Locale;
import java.util.function.Function;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code compare}: loads two hosts one after the other, and shows their {@link Comparison}. */
@Command(name = "compare", exitCodeOnExecutionException = 2,
         description = "What changed between two descriptions of one host.",
         footer = "Counters are no change; where both descriptions say when they were recorded, they are shown as "
             + "rates. Exit status: 0 nothing changed, 1 something did, 2 bad usage or an unreadable description.")
public final class CompareCommand extends TableCommand {
    @Parameters(index = "0", paramLabel = "OLD", description = "The host's description before.")
    private File old;

    @Parameters(index = "1", paramLabel = "NEW", description = "Its description after.")
    private File now;

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
            .withStatus(comparison.changes.isEmpty() ? 0 : 1);
    }

    private Snapshot snapshot(File description) {
        tarn().load(description.getPath(), spec().commandLine());
        return new Snapshot(library());
    }

    private static Object result(Comparison comparison) {
        return Json.object("changes", comparison.changes.stream().map(CompareCommand::result)
            .collect(Collectors.toList()), "rates", comparison.rates);
    }

    private static Object result(Comparison.Change change) {
        return change.property == null ? Json.object("subject", change.subject, "change", change.change)
            : Json.object("subject", change.subject, "change", change.change, "property", change.property,
                          "was", change.was, "is", change.is);
    }

    private static Table<?> table(Comparison comparison) {
        return new Table<>(comparison.changes).text("Change", change -> change.change)
            .text("Subject", change -> change.subject)
            .text("Property", change -> change.property)
            .text("Was", change -> change.was)
            .text("Is", change -> change.is);
    }

    private static void show(Comparison comparison, Page out) {
        if (comparison.changes.isEmpty()) {
            out.println("nothing changed");
        }
        for (Comparison.Change change : comparison.changes) {
            out.printFolded(change.property == null ? change.change + "  " + change.subject
                : change.change + "   " + change.subject + ": " + change.property + " " + words(change));
        }
        if (comparison.rates != null) {
            show(comparison.rates, out);
        }
    }

    /** Both values as the other commands show them; as they are where that would not tell them apart. */
    private static String words(Comparison.Change change) {
        String was = words(change.property, change.was);
        String is = words(change.property, change.is);
        return was.equals(is) ? change.was + " → " + change.is : was + " → " + is;
    }

    private static String words(String property, Object value) {
        String words = value == null ? ""
            : property.equals("totalBytes") ? Units.bytes(new Counter((Long) value).value().doubleValue())
            : PortWords.value(property, value);
        return words.isEmpty() ? property.equals("exception") ? "none" : "unknown" : words;
    }

    private static void show(Rates rates, Page out) {
        out.println();
        out.println(String.format(Locale.ROOT, "In the %.0f seconds between the two:", rates.seconds));
        new Table<>(rates.disks).text("Disk", disk -> disk.diskName.isEmpty() ? null : disk.diskName)
            .text("Instance", disk -> disk.instanceName)
            .number("Read/s", shown(disk -> disk.bytesReadPerSecond, Units::bytes))
            .number("Written/s", shown(disk -> disk.bytesWrittenPerSecond, Units::bytes))
            .number("Busy", shown(disk -> disk.busyPercent, CompareCommand::percent)).print(out);
        out.println();
        new Table<>(rates.processors).number("CPU", cpu -> cpu.cpuId)
            .number("User", shown(cpu -> cpu.userPercent, CompareCommand::percent))
            .number("Kernel", shown(cpu -> cpu.kernelPercent, CompareCommand::percent))
            .number("Wait", shown(cpu -> cpu.waitPercent, CompareCommand::percent))
            .number("Idle", shown(cpu -> cpu.idlePercent, CompareCommand::percent)).print(out);
        out.println();
        new Table<>(rates.ports).text("Port", port -> port.port)
            .number("Frames sent/s", shown(port -> port.framesSentPerSecond, CompareCommand::decimal))
            .number("Frames received/s", shown(port -> port.framesReceivedPerSecond, CompareCommand::decimal))
            .number("Errors/h", shown(port -> port.errorsPerSecond, rate -> decimal(rate * 3600))).print(out);
    }

    /** A cell of a rate that may not be known. */
    private static <R> Function<R, String> shown(Function<R, Double> rate, Function<Double, String> words) {
        return row -> rate.apply(row) == null ? null : words.apply(rate.apply(row));
    }

    private static String percent(double share) {
        return decimal(share) + "%";
    }

    private static String decimal(double number) {
        return Units.decimal(number, 1);
    }
}
