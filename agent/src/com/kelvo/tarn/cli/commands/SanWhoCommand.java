package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Tree;
import com.kelvo.tarn.cli.san.Store;
import com.kelvo.tarn.cli.san.Who;
import java.util.ArrayList;
import java.util.Collection;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code san who}: {@link Who}. */
@Command(name = "who", description = "Which hosts see a thing, by which of their ports, and which units they reach "
             + "through it.", footer = SanThingCommand.AMBIGUOUS)
public final class SanWhoCommand extends SanThingCommand {
    @Parameters(arity = "1..*", paramLabel = "THING", description = NAMES)
    private List<String> names;

    /** A line of the table for programs. */
    private static final class Row {
        private final Who who;
        private final Who.Seer seer;
        private final String unit;
        private final Set<String> disks;

        private Row(Who who, Who.Seer seer, String unit, Set<String> disks) {
            this.who = who;
            this.seer = seer;
            this.unit = unit;
            this.disks = disks;
        }
    }

    @Override
    Answer ask(Store store) {
        return about(store, names, things -> {
            List<Who> answers = things.stream().map(thing -> new Who(store, thing)).collect(Collectors.toList());
            return Answer.table(answers.size() == 1 ? answers.get(0) : answers, () -> table(answers))
                .shownAs(out -> answers.forEach(who -> show(who, out)));
        });
    }

    private void show(Who who, Page out) {
        Tree tree = new Tree(who.kind + " " + who.thing + ": " + count(who.hosts.size(), "host") + ", "
                             + count(distinct(who, seer -> seer.ports), "port") + ", "
                             + count(distinct(who, seer -> seer.units), "unit"));
        for (Who.Seer seer : who.hosts) {
            Tree host = new Tree(seer.host + (seer.units.isEmpty() ? ": reaches no unit there"
                : ": " + count(seer.units.size(), "unit")));
            host.remark(seer.ports.isEmpty() ? "" : "through " + String.join(", ", seer.ports));
            addTo(host, new ArrayList<>(seer.disksOfUnits.entrySet()), SanWhoCommand::words);
            tree.add(host);
        }
        tree.print(out);
    }

    private static long distinct(Who who, Function<Who.Seer, Collection<String>> names) {
        return who.hosts.stream().flatMap(seer -> names.apply(seer).stream()).distinct().count();
    }

    private static String words(Map.Entry<String, TreeSet<String>> unit) {
        return unit.getKey() + (unit.getValue().isEmpty() ? "" : ": " + String.join(", ", unit.getValue()));
    }

    private static Table<?> table(List<Who> answers) {
        List<Row> rows = answers.stream().flatMap(who -> who.hosts.stream().flatMap(seer -> seer.units.isEmpty()
            ? Stream.of(new Row(who, seer, null, Set.of()))
            : seer.disksOfUnits.entrySet().stream().map(unit -> new Row(who, seer, unit.getKey(), unit.getValue()))))
            .collect(Collectors.toList());
        return new Table<>(rows).text("Thing", row -> row.who.thing).text("Kind", row -> row.who.kind)
            .text("Host", row -> row.seer.host).text("Ports", row -> String.join(" ", row.seer.ports))
            .text("Unit", row -> row.unit).text("Disks", row -> String.join(" ", row.disks));
    }
}
