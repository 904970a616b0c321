package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.cli.san.NetworkDiff;
import com.kelvo.tarn.cli.san.Store;
import java.time.Instant;
import java.time.format.DateTimeParseException;
import java.time.temporal.ChronoUnit;
import java.util.ArrayList;
import java.util.Collection;
import java.util.List;
import java.util.Map;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;

/** {@code san diff}: a {@link NetworkDiff}. */
@Command(name = "diff", description = "What changed in the storage network: between the latest recording of each host "
             + "and the one before.",
         footer = "One change that several hosts see is one line. What is told at one of the two times only, such as "
             + "the speed of a port that is down, is no change. Exit status, as diff has it: 0 nothing changed, 1 "
             + "something did, 2 bad usage.")
public final class SanDiffCommand extends StoreInquiryCommand {
    private static final Map<String, String> PROPERTIES = Map.of("domain", "switch", "sizeBytes", "size");

    @Option(names = "--since", paramLabel = "TIME", description = "Compare with what was latest then: "
            + "2026-11-24T10:00:00Z, or so long ago: 36h, 7d.")
    private String since;

    /** A thing that changed, as one host sees it. */
    private static final class Row {
        private final NetworkDiff.Change change;
        private final String name;
        private final String host;

        Row(NetworkDiff.Change change, String name, String host) {
            this.change = change;
            this.name = name;
            this.host = host;
        }
    }

    @Override
    Answer ask(Store store) {
        NetworkDiff diff = NetworkDiff.of(store, since == null ? null : time());
        return Answer.table(diff, () -> table(diff)).shownAs(out -> show(diff, out))
            .withStatus(diff.changes.isEmpty() ? 0 : 1);
    }

    private Instant time() {
        try {
            return (since.endsWith("Z") ? Instant.parse(since) : Instant.now().minus(duration("--since", since)))
                .truncatedTo(ChronoUnit.SECONDS);
        } catch (DateTimeParseException | ParameterException none) {
            throw refusal("--since: '" + since + "' is no time such as 2026-11-24T10:00:00Z or 7d");
        }
    }

    /** All of it, a line for each host. */
    private static Table<?> table(NetworkDiff diff) {
        List<Row> rows = new ArrayList<>();
        diff.changes.forEach(change -> change.things.forEach(
            thing -> thing.hosts.forEach(host -> rows.add(new Row(change, thing.name, host)))));
        return new Table<>(rows).text("Kind", row -> row.change.kind).text("Name", row -> row.name)
            .text("Change", row -> row.change.change).text("Property", row -> row.change.property)
            .text("Was", row -> row.change.was).text("Is", row -> row.change.is).text("Host", row -> row.host);
    }

    private static void show(NetworkDiff diff, Page out) {
        String later = diff.since == null ? "" : ", " + diff.unheard.size() + " not recorded since " + diff.since;
        out.printFolded(diff.compared + " hosts compared" + later
                        + (diff.changes.isEmpty() ? ": nothing changed" : ""));
        if (!diff.changes.isEmpty()) {
            new Table<>(diff.changes).text("Change", SanDiffCommand::words)
                .text("Hosts", change -> oneOr(change.hosts(), "hosts"))
                .text("What", change -> change.kind + (change.things.size() == 1 ? " " + change.things.get(0).name
                                                                                 : "s: " + change.things.size()))
                .print(out);
        }
    }

    private static String oneOr(Collection<String> names, String noun) {
        return names.size() == 1 ? names.iterator().next() : names.size() + " " + noun;
    }

    private static String words(NetworkDiff.Change change) {
        return (isWorse(change) ? Page.TROUBLE : "")
            + (change.property == null ? change.change
               : !change.change.equals("changed") ? change.change + ", " + either(change.was, change.is) + " paths"
               : PROPERTIES.getOrDefault(change.property, change.property) + " " + values(change));
    }

    private static Object either(Object was, Object is) {
        return was == null ? is : was;
    }

    private static String values(NetworkDiff.Change change) {
        String was = value(change, change.was);
        String is = value(change, change.is);
        return was.equals(is) ? change.was + " -> " + change.is : was + " -> " + is; // a size by a little
    }

    private static boolean isWorse(NetworkDiff.Change change) {
        return change.change.equals("vanished")
            || "state".equals(change.property) && !PortWords.ONLINE.equals(change.is)
            || change.change.equals("changed") && "paths".equals(change.property)
                && (Long) change.is < (Long) change.was;
    }

    private static String value(NetworkDiff.Change change, Object value) {
        return change.property.equals("speed") ? PortWords.speed((Long) value)
            : change.property.equals("sizeBytes") ? Units.bytes((Long) value) : value.toString();
    }
}
