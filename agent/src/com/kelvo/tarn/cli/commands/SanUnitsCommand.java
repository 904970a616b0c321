package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.cli.san.ListedUnit;
import com.kelvo.tarn.cli.san.Store;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code san units}: each {@link ListedUnit}. */
@Command(name = "units", description = "The logical units of the storage network: what they are, and how many hosts "
             + "reach them over how many paths.",
         footer = "Hosts and the fewest paths that one of them has online are those of the whole network, whatever is "
             + "asked for.")
public final class SanUnitsCommand extends StoreInquiryCommand {
    @Mixin
    private PortFilterOptions ports;

    @Option(names = "--array", paramLabel = "NODE", description = "Only those that a node of this name presents.")
    private String array;

    @Option(names = "--shared", description = "Only those that several hosts reach.")
    private boolean shared;

    @Option(names = "--single", description = "Only those to which a host has less than two paths online.")
    private boolean single;

    @Override
    Answer ask(Store store) {
        List<ListedUnit> units = ListedUnit.of(store, ports.filter(), array, shared, single);
        boolean anyByAddress = units.stream().anyMatch(unit -> unit.byAddress);
        return Answer.listing("unit", null, () -> units, null, rows -> new Table<>(rows)
            .text("Unit", row -> row.unit, row -> row.unit + (row.byAddress ? " *" : ""))
            .number("Hosts", row -> row.hosts)
            .number("Paths min", row -> row.pathsMin, row -> (row.pathsMin < 2 ? Page.TROUBLE : "") + row.pathsMin)
            .number("Size", row -> row.sizeBytes, row -> row.sizeBytes == null ? null : Units.bytes(row.sizeBytes))
            .text("Product", row -> row.product).text("Vendor", row -> row.vendor)
            .text("Arrays", row -> String.join(" ", row.arrays)).exact("By address", row -> row.byAddress)
            .note(anyByAddress ? "* known by its address only, which an array may give to several units" : ""));
    }
}
