package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.cli.answers.PortStates;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.HbaOptions;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.PortWords;
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
public final class PathsCommand extends TableCommand {
    @Mixin
    private HbaOptions options;

    @Override
    public Answer ask() {
        HbaOptions names = options.and(tarn().hba());
        Fabric fabric = new Fabric(names.fill(library()));
        Paths paths = new Paths(fabric);
        return Answer.table(paths.units, () -> table(paths)).shownAs(out -> {
            if (paths.units.isEmpty()) {
                out.println("no logical units behind Fibre Channel");
            }
            paths.units.forEach(unit -> tree(unit, path -> path.osDeviceName).print(out));
            names.explainDeviceNames(fabric, out);
        });
    }

    /** A unit with its paths, marked when it lacks any. */
    static Tree tree(LogicalUnit unit, Function<LogicalUnit.Path, String> device) {
        Tree tree = new Tree(known(unit.node, "unknown array") + " LUN " + unit.lun
                             + (!unit.lacksPaths() ? ""
                             : ": " + Page.TROUBLE + (unit.onlinePaths() == 1 ? "ONE" : "NO") + " PATH LEFT"));
        for (LogicalUnit.Path path : unit.paths) {
            tree.add(new Tree(String.format(
                Locale.ROOT, "%s: adapter %d port %d %s → %s", known(device.apply(path), "no device"), path.adapter,
                path.port, end(path.portWWN, path.portState), end(path.remotePort, path.remotePortState))));
        }
        return tree;
    }

    private static String end(String name, UnsignedInt state) {
        String shown = PortWords.state(state);
        return known(name, "unknown") + " "
            + (PortStates.isOnline(state) ? shown : Page.TROUBLE + shown.toUpperCase(Locale.ROOT));
    }

    private static String known(String name, String otherwise) {
        return Instances.name(name).isEmpty() ? otherwise : name;
    }

    private static Table<?> table(Paths paths) {
        List<LogicalUnit.NamedPath> all =
            paths.units.stream().flatMap(unit -> unit.namedPaths().stream()).collect(Collectors.toList());
        return new Table<>(all)
            .text("Node", path -> path.node).number("LUN", path -> path.lun)
            .number("Adapter", path -> path.adapter).number("Port", path -> path.port)
            .text("Port WWN", path -> path.portWWN).text("Port state", path -> PortWords.state(path.portState))
            .text("Remote port", path -> path.remotePort)
            .text("Remote port state", path -> PortWords.state(path.remotePortState))
            .text("Device", path -> path.osDeviceName).number("Bus", path -> path.scsiBus)
            .number("Target", path -> path.targetId).number("SCSI LUN", path -> path.scsiLun);
    }
}
