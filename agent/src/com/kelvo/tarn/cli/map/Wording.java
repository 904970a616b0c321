package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.PortStates;
import com.kelvo.tarn.cli.map.Topology.Member;
import com.kelvo.tarn.cli.map.Topology.Node;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import java.util.ArrayList;
import java.util.Collection;
import java.util.List;
import java.util.Locale;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What stands in boxes, at lines and in rows. */
final class Wording {
    /** So many device names stand in a box. */
    private static final int NAMES_IN_BOX = 4;

    private Wording() {
    }

    static void describe(Node box, Fabric.Adapter adapter) {
        TrInstance instance = adapter.instance;
        box.line("Manufacturer", Instances.name(instance, HostBusAdapterProvider.manufacturer));
        box.line("Model", Instances.name(instance, HostBusAdapterProvider.model));
        box.fact("Description", Instances.name(instance, HostBusAdapterProvider.modelDescription));
        box.fact("Serial number", Instances.name(instance, HostBusAdapterProvider.serialNumber));
        box.fact("Node WWN", Instances.name(instance, HostBusAdapterProvider.name));
        box.fact("Firmware", Instances.name(instance, HostBusAdapterProvider.firmwareVersion));
        box.fact("Driver", Instances.name(instance, HostBusAdapterProvider.driverName) + " "
                 + Instances.name(instance, HostBusAdapterProvider.driverVersion));
    }

    /** A port, local or remote; null leaves the box as it is. */
    static void describe(Node box, TrInstance port) {
        if (port == null) {
            return;
        }
        box.line("Port WWN", Instances.name(port, HbaPortProvider.permanentAddress));
        box.line("Name", Instances.name(port, HbaPortProvider.name));
        String state = PortWords.of(port, HbaPortProvider.portState);
        String speed = PortWords.of(port, HbaPortProvider.speed);
        box.lines.add(PortStates.isOk(port) ? state + ", " + speed : speed);
        box.fact("State", state);
        box.fact("Speed", speed);
        box.fact("Type", PortWords.of(port, HbaPortProvider.portType));
        box.fact("FC ID", PortWords.of(port, HbaPortProvider.portFcId));
        box.fact("Node WWN", Instances.name(port, HbaPortProvider.nodeWWN));
    }

    /** Remote ports that share a box. */
    static void describe(Node box, List<Grouping.Remote> remotes) {
        long arrays = remotes.stream().map(Grouping.Remote::node).distinct().count();
        box.line("Arrays", "of " + count(arrays, "array"));
        box.line("WWNs", wwnOrPlace(remotes.get(0).first()) + (remotes.size() > 1 ? " …" : ""));
        remotes.forEach(remote -> box.members.add(new Member(
            wwnOrPlace(remote.first()), Instances.name(remote.first().instance, HbaPortProvider.name))));
    }

    /** Logical units, one or several. */
    static void describeUnits(Node box, List<LogicalUnit> units) {
        LogicalUnit first = units.get(0);
        boolean oneArray = first.node.equals(units.get(units.size() - 1).node);
        List<String> devices = units.stream().flatMap(unit -> unit.paths.stream()).map(LogicalUnit.Path::deviceName)
            .filter(device -> !device.isEmpty()).distinct().collect(Collectors.toList());
        if (units.size() == 1) {
            box.line("Size", size(first));
            box.line("Mounted on", String.join(", ", first.mounts));
            box.fact("Drive", first.driveType);
            devices.stream().limit(NAMES_IN_BOX).forEach(box.lines::add);
            if (devices.size() > NAMES_IN_BOX) {
                box.lines.add(String.format(Locale.ROOT, "and %,d more", devices.size() - NAMES_IN_BOX));
            }
            box.fact("Devices", String.join(", ", devices));
            box.fact("Used as", String.join(", ", first.pseudoDevices));
            describe(box, first.identity);
        } else {
            box.line("LUNs", oneArray ? "LUN " + luns(units)
                : "of " + count(units.stream().map(unit -> unit.node).distinct().count(), "array"));
            box.line("Mounted on", mounts(units));
            box.lines.add("+ opens it");
            units.forEach(unit -> box.members.add(new Member(
                oneArray ? "LUN " + unit.lun : unit.place(), Stream.of(
                    unit.paths.get(0).deviceName(), size(unit), String.join(", ", unit.mounts),
                    told(unit.identity, identity -> identity.serial),
                    told(unit.identity, identity -> identity.designator))
                    .filter(text -> !text.isEmpty()).collect(Collectors.joining(", ")))));
        }
        box.fact("Array", oneArray ? first.node : "");
        box.order = order(first);
    }

    /** What a volume is; null leaves the box as it is. */
    private static void describe(Node box, Identity volume) {
        Stream.of(told(volume, identity -> identity.vendor) + " " + told(volume, identity -> identity.product),
                  told(volume, identity -> identity.serial), told(volume, identity -> identity.designator))
            .map(String::strip).filter(text -> !text.isEmpty()).forEach(box.identifiers::add);
        box.fact("Vendor", told(volume, identity -> identity.vendor));
        box.fact("Product", told(volume, identity -> identity.product));
        box.fact("Revision", told(volume, identity -> identity.revision));
        box.fact("Serial number", told(volume, identity -> identity.serial));
        box.fact("Designator", told(volume, identity -> identity.designator));
    }

    /** Empty when it is not known. */
    private static String told(Identity volume, Function<Identity, String> text) {
        return volume == null ? "" : text(text.apply(volume));
    }

    /** By the array, then by number. */
    static String order(LogicalUnit unit) {
        return unit.node + String.format(Locale.ROOT, " %20s", Long.toUnsignedString(unit.lun.longValue()));
    }

    /** Numbers, and what lies between two: "0 to 4, 21, 58". */
    private static String luns(List<LogicalUnit> units) {
        List<String> runs = new ArrayList<>();
        for (int from = 0, to; from < units.size(); from = to) {
            to = from + 1;
            while (to < units.size() && units.get(to).lun.longValue() == units.get(to - 1).lun.longValue() + 1) {
                to++;
            }
            String start = units.get(from).lun.toString();
            runs.add(to - from == 1 ? start : start + (to - from == 2 ? ", " : " to ") + units.get(to - 1).lun);
        }
        return String.join(", ", runs);
    }

    private static String mounts(List<LogicalUnit> units) {
        return units.stream().flatMap(unit -> unit.mounts.stream()).collect(Collectors.joining(", "));
    }

    private static String size(LogicalUnit unit) {
        return unit.sizeBytes == null ? "" : Units.bytes(unit.sizeBytes);
    }

    /** What an array's drives call themselves. */
    static String models(Collection<LogicalUnit> units) {
        return units.stream().map(unit -> unit.driveType).filter(type -> !type.isEmpty()).distinct().sorted().limit(2)
            .collect(Collectors.joining(", "));
    }

    static String name(List<LogicalUnit> units) {
        String first = units.get(0).place().strip();
        return units.size() == 1 ? first : first + " to " + units.get(units.size() - 1).place().strip();
    }

    static String title(List<LogicalUnit> units) {
        return units.size() == 1 ? "LUN " + units.get(0).lun : count(units.size(), "logical unit");
    }

    static String label(LogicalUnit.Path path) {
        return path.remote.port.place() + " to " + wwnOrPlace(path.remote) + ", " + path.deviceName()
            + (path.isOnline() ? "" : ", not online");
    }

    /** A cell for each of the table's columns. */
    static List<String> cells(LogicalUnit unit, LogicalUnit.Path path, String remark) {
        return List.of(unit.node, unit.lun.toString(), remark, path.deviceName(), String.valueOf(path.adapter),
                       String.valueOf(path.port), text(path.portWWN), PortWords.state(path.portState),
                       text(path.remotePort), PortWords.state(path.remotePortState), size(unit),
                       String.join(", ", unit.mounts), text(path.scsiBus), text(path.targetId),
                       told(unit.identity, identity -> identity.serial),
                       told(unit.identity, identity -> identity.designator));
    }

    /** What is to be remarked on a unit; mostly nothing. */
    static String remark(LogicalUnit unit) {
        return !unit.lacksPaths() ? ""
            : (unit.onlinePaths() == 1 ? "one path left" : "no path left")
                + (unit.paths.size() == 1 ? "" : " of " + unit.paths.size());
    }

    /** The frame's title; empty when there is none, for want of a name. */
    static String group(String node) {
        return Instances.name(node).isEmpty() ? "" : "Array " + node;
    }

    static String wwnOrPlace(Fabric.RemotePort remote) {
        String wwn = Instances.name(remote.instance, HbaPortProvider.permanentAddress);
        return wwn.isEmpty() ? remote.place() : wwn;
    }

    static String count(long number, String noun) {
        return String.format(Locale.ROOT, "%,d %s%s", number, noun, number == 1 ? "" : "s");
    }

    private static String text(Object value) {
        return Objects.toString(value, "").strip();
    }
}
