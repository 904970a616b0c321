package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.cli.answers.PortFacts;
import com.kelvo.tarn.cli.answers.PortStates;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Tree;
import java.util.List;
import java.util.Locale;
import java.util.function.Function;
import java.util.stream.Collectors;
import javax.wbem.cim.UnsignedInt;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

/** {@code paths}: the {@link Paths} that {@code fillHbaCache} sees. */
@Command(name = "paths", description = "The logical units behind Fibre Channel, each with all the ways to it.",
         footer = "A unit is named by its array's node name and the LUN that the array exports.")
public final class PathsCommand extends TableInquiry<Paths> {
    @Mixin
    private HbaOptions options;

    private Fabric fabric;

    @Override
    protected Paths ask() {
        fabric = new Fabric(options.or(tarn().hba()).fill());
        return new Paths(fabric);
    }

    @Override
    protected Object result(Paths paths) {
        return paths.units;
    }

    @Override
    protected void show(Paths paths, Page out) {
        if (paths.units.isEmpty()) {
            out.println("no logical units behind Fibre Channel");
        }
        paths.units.forEach(unit -> tree(unit, paths.lacksWays(unit), path -> path.osDeviceName).print(out));
        options.or(tarn().hba()).explainDeviceNames(fabric, out);
    }

    /** A unit with its ways, marked when it lacks any. */
    static Tree tree(LogicalUnit unit, boolean lacksWays, Function<LogicalUnit.Path, String> device) {
        Tree tree = new Tree(known(unit.node, "unknown array") + " LUN " + unit.lun
                             + (!lacksWays ? "" : unit.onlinePaths() == 1 ? ": !! ONE PATH LEFT"
                                                                                      : ": !! NO PATH LEFT"));
        for (LogicalUnit.Path path : unit.paths) {
            tree.add(new Tree(String.format(
                "%s: adapter %d port %d %s → %s", known(device.apply(path), "no device"), path.adapter, path.port,
                end(path.portWWN, path.portState), end(path.remotePort, path.remotePortState))));
        }
        return tree;
    }

    private static String end(String name, UnsignedInt state) {
        String shown = PortStates.name(state);
        return known(name, "unknown") + " " + (PortStates.isOnline(state) ? shown : "!! " + shown.toUpperCase(Locale.ROOT));
    }

    private static String known(String name, String otherwise) {
        return PortFacts.name(name).isEmpty() ? otherwise : name;
    }

    @Override
    protected Table<?> table(Paths paths) {
        List<LogicalUnit.Way> ways =
            paths.units.stream().flatMap(unit -> unit.ways().stream()).collect(Collectors.toList());
        return new Table<>(ways)
            .text("Node", way -> way.node).number("LUN", way -> way.lun)
            .number("Adapter", way -> way.adapter).number("Port", way -> way.port)
            .text("Port WWN", way -> way.portWWN).text("Port state", way -> PortStates.name(way.portState))
            .text("Remote port", way -> way.remotePort)
            .text("Remote port state", way -> PortStates.name(way.remotePortState))
            .text("Device", way -> way.osDeviceName).number("Bus", way -> way.scsiBus)
            .number("Target", way -> way.targetId).number("SCSI LUN", way -> way.scsiLun);
    }

    @Override
    protected boolean takesHbaOptions() {
        return true;
    }

    @Override
    protected boolean isSection() {
        return false;
    }
}
