package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Tree;
import com.kelvo.tarn.cli.san.Store;
import com.kelvo.tarn.cli.san.Thing;
import com.kelvo.tarn.cli.san.Things;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.function.Function;
import picocli.CommandLine.Option;

/** A command about things of the storage network that the user names. */
abstract class SanThingCommand extends StoreInquiryCommand {
    /** What a thing may be, for the help. */
    static final String NAMES = "The WWN of a port, the node name of an array or an adapter, a fabric, a switch "
        + "(FABRIC/DOMAIN), an adapter (HOST/NUMBER), a model or firmware of adapters, a host; a unit: its "
        + "designator, \"NODE LUN 2\", a disk or mount point (HOST:c4t0d0, or that of any host).";
    static final String AMBIGUOUS = "Where several things have that name, KIND:NAME says which: port, array, fabric, "
        + "switch, unit, adapter, model, firmware or host.";

    private static final int SHOWN = 10;

    @Option(names = "--all", description = "Show each unit, however many there are of a host.")
    private boolean all;

    /** What comes of the things, or that there is no such one. */
    final Answer about(Store store, List<String> names, Function<List<Thing>, Answer> answer) {
        List<Thing> things = new ArrayList<>();
        for (String name : names) {
            Thing thing;
            try {
                thing = Things.find(store, name);
            } catch (IllegalArgumentException ambiguous) {
                throw refusal(ambiguous.getMessage());
            }
            if (thing == null) {
                return Answer.missing("nothing in the network is called '" + name + "'");
            }
            things.add(thing);
        }
        return answer.apply(things);
    }

    /** Adds a line for each of the first, or for all. */
    final <T> void addTo(Tree tree, List<T> rows, Function<T, String> line) {
        int shown = all || rows.size() <= SHOWN ? rows.size() : SHOWN - 1;
        rows.subList(0, shown).forEach(row -> tree.add(new Tree(line.apply(row))));
        if (shown < rows.size()) {
            tree.add(new Tree("and " + (rows.size() - shown) + " more, with --all"));
        }
    }

    /** Such as "1 unit", "2 units". */
    static String count(long number, String noun) {
        return String.format(Locale.ROOT, "%d %s%s", number, noun, number == 1 ? "" : "s");
    }
}
