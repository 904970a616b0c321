package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Tree;
import com.kelvo.tarn.cli.san.Impact;
import com.kelvo.tarn.cli.san.PointKind;
import com.kelvo.tarn.cli.san.Ranking;
import com.kelvo.tarn.cli.san.Store;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

/** {@code san impact}: an {@link Impact}, or a {@link Ranking}. */
@Command(name = "impact", description = "What fails with things that fail, all at once: units that lose their last "
             + "path, what is mounted on them, and units that are left with one path.",
         footer = "Paths count that are online at both ends. " + SanThingCommand.AMBIGUOUS)
public final class SanImpactCommand extends SanThingCommand {
    @Parameters(arity = "0..*", paramLabel = "THING", description = NAMES)
    private List<String> names = new ArrayList<>();

    /** What the shell completes. */
    static final class Kinds extends ArrayList<String> {
        private static final long serialVersionUID = 1;

        Kinds() {
            super(Stream.of(PointKind.values()).map(PointKind::toString).collect(Collectors.toList()));
        }
    }

    @Option(names = "--each", paramLabel = "KIND", completionCandidates = Kinds.class,
            description = "In place of things: what fails with each port (of a host), fabric, switch, array-port or "
                + "adapter, if it alone does, the worst first; those that nothing hangs on are left out.")
    private String each;

    /** A line of the table for programs. */
    private static final class Row {
        private final String effect;
        private final Impact.Loss loss;

        private Row(String effect, Impact.Loss loss) {
            this.effect = effect;
            this.loss = loss;
        }
    }

    @Override
    Answer ask(Store store) {
        if (names.isEmpty() == (each == null)) {
            throw refusal("either a THING is named or --each KIND");
        }
        return each == null ? about(store, names, things -> answer(new Impact(store, things)))
            : answer(new Ranking(store, kind()), each);
    }

    private PointKind kind() {
        return Stream.of(PointKind.values()).filter(kind -> kind.toString().equals(each)).findFirst().orElseThrow(
            () -> refusal("--each: '" + each + "' is none of " + String.join(", ", new Kinds())));
    }

    private static Answer answer(Ranking ranking, String kind) {
        return Answer.table(ranking.effects, () -> new Table<>(ranking.effects)
            .text("Thing", effect -> effect.thing)
            .text("Hosts", effect -> effect.hosts, effect -> effect.hosts == 1 ? effect.firstHost : effect.hosts)
            .number("Lost units", effect -> effect.lostUnits)
            .number("Lost mounts", effect -> effect.lostMounts)
            .number("Last paths", effect -> effect.lastPaths)
            .note(others(ranking.harmless, kind)));
    }

    private static String others(int harmless, String kind) {
        return harmless == 0 ? "" : "nothing hangs on " + harmless + " other " + kind
            + (harmless == 1 ? "" : kind.endsWith("ch") ? "es" : "s");
    }

    private Answer answer(Impact impact) {
        return Answer.table(impact, () -> table(impact)).shownAs(out -> show(impact, out));
    }

    private void show(Impact impact, Page out) {
        Tree tree = new Tree("without " + String.join(", ", impact.thing));
        tree.add(branch((impact.lost.isEmpty() ? "" : Page.TROUBLE) + count(impact.lost.size(), "unit")
                        + " without a path, " + count(impact.lost.stream().mapToLong(
                            loss -> loss.mounts.size()).sum(), "mount point") + " on them", impact.lost));
        tree.add(branch(count(impact.lastPath.size(), "unit") + " with one path left", impact.lastPath));
        tree.print(out);
    }

    private Tree branch(String heading, List<Impact.Loss> losses) {
        Tree branch = new Tree(heading);
        Map<String, List<Impact.Loss>> hosts = losses.stream().collect(
            Collectors.groupingBy(loss -> loss.host, LinkedHashMap::new, Collectors.toList()));
        hosts.forEach((name, units) -> {
            Tree host = new Tree(name + ": " + count(units.size(), "unit"));
            addTo(host, units, SanImpactCommand::words);
            branch.add(host);
        });
        return branch;
    }

    private static String words(Impact.Loss loss) {
        return loss.unit + (loss.mounts.isEmpty() ? "" : ", mounted at " + String.join(" and ", loss.mounts))
            + (loss.disks.isEmpty() ? "" : ": " + String.join(", ", loss.disks));
    }

    private static Table<?> table(Impact impact) {
        List<Row> rows = new ArrayList<>();
        impact.lost.forEach(loss -> rows.add(new Row("lost", loss)));
        impact.lastPath.forEach(loss -> rows.add(new Row("lastPath", loss)));
        return new Table<>(rows).text("Effect", row -> row.effect).text("Host", row -> row.loss.host)
            .text("Unit", row -> row.loss.unit).text("Disks", row -> String.join(" ", row.loss.disks))
            .text("Mounts", row -> String.join(" ", row.loss.mounts));
    }
}
