package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Independence;
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
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.inventory.Identity;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.function.Predicate;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import javax.wbem.cim.UnsignedInt;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

/** {@code paths}: the {@link Paths} that {@code fillHbaCache} sees. */
@Command(name = "paths", description = "The logical units behind Fibre Channel, each with all the ways to it.",
         footer = "A unit is named by its array's node name and the LUN that the array exports.")
public final class PathsCommand extends TableCommand {
    @Mixin
    private HbaOptions options;

    @Parameters(arity = "0..*", paramLabel = "NODE|WWN|DISK|MOUNT|SERIAL|DESIGNATOR", description = "Only the units of "
            + "this array or this unit (\"NODE LUN 2\"), behind a port of this WWN, on this disk or mount point, or "
            + "with this serial number or designator; any of several.")
    private List<String> wanted = new ArrayList<>();

    /** What the shell completes. */
    static final class Kinds extends ArrayList<String> {
        private static final long serialVersionUID = 1;

        Kinds() {
            super(List.of("single", "shared", "lost"));
        }
    }

    @Option(names = "--only", paramLabel = "KIND", completionCandidates = Kinds.class,
            description = "single: units with less than two paths online; shared: with paths that share an adapter, a "
                + "fabric or a port of the array; lost: with a path that is not online.")
    private String only;

    @Override
    public Answer ask() {
        HbaOptions names = options.and(tarn().hba());
        Fabric fabric = names.fabric(library(), names.fill(library()), library().knownIdentities());
        Paths paths = new Paths(fabric);
        for (String name : wanted) {
            if (paths.units.stream().noneMatch(unit -> unit.answersTo(name))) {
                return Answer.missing("no paths of " + name);
            }
        }
        Predicate<LogicalUnit> kind = kind(fabric, paths);
        List<LogicalUnit> units = paths.units.stream().filter(kind)
            .filter(unit -> wanted.isEmpty() || wanted.stream().anyMatch(unit::answersTo)).collect(Collectors.toList());
        return Answer.table(units, () -> table(units)).shownAs(out -> {
            if (units.isEmpty()) {
                out.println(paths.units.isEmpty() ? "no logical units behind Fibre Channel" : "no such logical units");
            }
            units.forEach(unit -> {
                Tree tree = tree(unit, path -> "");
                tree.remark(volume(unit));
                tree.print(out);
            });
        });
    }

    private Predicate<LogicalUnit> kind(Fabric fabric, Paths paths) {
        Independence independence = new Independence(fabric, paths);
        Map<String, Predicate<LogicalUnit>> kinds = Map.of(
            "single", LogicalUnit::lacksPaths, "shared", independence::isShared,
            "lost", unit -> unit.onlinePaths() < unit.distinctPaths().size());
        if (only != null && !kinds.containsKey(only)) {
            throw refusal("--only: '" + only + "' is none of single, shared, lost");
        }
        return only == null ? unit -> true : kinds.get(only);
    }

    /** A unit with its paths, marked when it lacks any; of each path, what else there is to say. */
    static Tree tree(LogicalUnit unit, Function<LogicalUnit.Path, String> remark) {
        Tree tree = new Tree(heading(unit) + (!unit.lacksPaths() ? ""
            : ": " + Page.TROUBLE + (unit.onlinePaths() == 1 ? "ONE" : "NO") + " PATH LEFT"));
        for (LogicalUnit.Path path : unit.paths) {
            tree.add(new Tree(String.format(
                Locale.ROOT, "%s: adapter %d port %d %s → %s%s", known(path.deviceName(), "no device"), path.adapter,
                path.port, end(path.portWWN, path.portState), end(path.remotePort, path.remotePortState),
                remark.apply(path))));
        }
        return tree;
    }

    /** What it is called, its size, where it is mounted, its fabrics and how many of its paths are online. */
    private static String heading(LogicalUnit unit) {
        String fabrics = unit.paths.stream().map(path -> path.fabric).filter(name -> !name.isEmpty()).distinct()
            .collect(Collectors.joining(" and "));
        return Stream.of(
            known(unit.node, "unknown array") + " LUN " + unit.lun,
            unit.sizeBytes == null ? "" : Units.bytes(unit.sizeBytes), String.join(", ", unit.mounts),
            fabrics.isEmpty() ? "" : "fabric " + fabrics,
            unit.onlinePaths() + " of " + unit.distinctPaths().size() + " paths online")
            .filter(part -> !part.isEmpty()).collect(Collectors.joining(", "));
    }

    /** What is behind the unit, as far as it is told: make, serial number, designator, and what else is that volume. */
    private static String volume(LogicalUnit unit) {
        Identity identity = unit.identity;
        return identity == null ? "" : Stream.of(
            Stream.of(identity.vendor, identity.product).filter(Objects::nonNull).collect(Collectors.joining(" ")),
            identity.serial == null ? "" : "serial " + identity.serial, Objects.toString(identity.designator, ""),
            unit.pseudoDevices.isEmpty() ? "" : "used as " + String.join(", ", unit.pseudoDevices))
            .filter(part -> !part.isEmpty()).collect(Collectors.joining(", "));
    }

    private static String end(String name, UnsignedInt state) {
        String shown = PortWords.state(state);
        return known(name, "unknown") + " "
            + (PortStates.isOnline(state) ? shown : Page.TROUBLE + shown.toUpperCase(Locale.ROOT));
    }

    private static String known(String name, String otherwise) {
        return Instances.name(name).isEmpty() ? otherwise : name;
    }

    private static Table<?> table(List<LogicalUnit> units) {
        List<LogicalUnit.NamedPath> all =
            units.stream().flatMap(unit -> unit.namedPaths().stream()).collect(Collectors.toList());
        return new Table<>(all)
            .text("Node", path -> path.node).number("LUN", path -> path.lun)
            .number("Adapter", path -> path.adapter).number("Port", path -> path.port)
            .text("Port WWN", path -> path.portWWN).text("Port state", path -> PortWords.state(path.portState))
            .text("Fabric", path -> path.fabric).text("Remote port", path -> path.remotePort)
            .text("Remote port state", path -> PortWords.state(path.remotePortState))
            .text("Disk", LogicalUnit.Path::deviceName).text("Device", path -> path.osDeviceName)
            .number("Bus", path -> path.scsiBus)
            .number("Target", path -> path.targetId).number("SCSI LUN", path -> path.scsiLun)
            .text("Designator", path -> path.designator);
    }
}
