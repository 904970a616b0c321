package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.cli.answers.PortFacts;
import com.kelvo.tarn.cli.answers.PortStates;
import com.kelvo.tarn.cli.map.Topology.Kind;
import com.kelvo.tarn.cli.map.Topology.Node;
import com.kelvo.tarn.cli.map.Topology.State;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import java.util.ArrayList;
import java.util.Collection;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;

/** Makes the topology of what a host sees of its storage network. */
public final class TopologyBuilder {
    /**
     * So many logical units are drawn one by one, each path a line; of more, those of an array that look alike share a
     * box, and paths with the same ends a line.
     */
    private static final int fewUnits = 256;
    private static final int fewPaths = 512;
    /** So many logical units of an array are drawn one by one while there are few, and once there are more. */
    private static final int fewOfArray = 32;
    private static final int fewOfArrayOfMany = 4;
    /** So many remote ports are drawn one by one; of more, those that look alike share a box. */
    private static final int fewRemotePorts = 64;
    /** So many boxes differ in their ways; of more, only by how they do. */
    private static final int fewBoxes = 64;
    private static final int fewBoxesOfArray = 8;
    /** So many device names stand in a box. */
    private static final int namesInBox = 4;

    /** A remote port, and how each port of the host sees it. */
    private static final class Remote {
        private final List<Fabric.RemotePort> views = new ArrayList<>();

        private Fabric.RemotePort first() {
            return views.get(0);
        }

        private boolean isReadable() {
            return !wwn(first()).isEmpty();
        }

        /** The array's node name; empty when it is not known. */
        private String node() {
            return name(first().instance, HbaPortProvider.nodeWWN);
        }
    }

    private final Topology topology;
    private final Fabric fabric;
    private final Paths paths;
    private final Map<String, List<String>> findings;
    private final boolean all;
    private final Node host;
    private final Map<Fabric.Port, List<Node>> waysToPorts = new HashMap<>();
    private final Map<Fabric.RemotePort, List<Node>> waysToRemotePorts = new HashMap<>();

    private int remotePorts;

    private TopologyBuilder(SolarisComputerSystem system, Fabric fabric, Map<String, List<String>> findings,
                            boolean all) {
        String name = system.hostName().isBlank() ? "unnamed host" : system.hostName();
        topology = new Topology("Storage network of " + name);
        host = topology.node(Kind.HOST, "host", name);
        host.fact("Name", system.hostName());
        host.line("Platform", system.platform());
        host.fact("System", system.systemName() + " " + system.version());
        this.fabric = fabric;
        paths = new Paths(fabric);
        this.findings = findings;
        this.all = all;
    }

    /**
     * {@return the boxes and lines that show a host's storage network}
     *
     * @param system the host
     * @param fabric what it sees
     * @param findings what is wrong with a thing, by its place
     * @param all whether nothing shares a box
     */
    public static Topology topology(SolarisComputerSystem system, Fabric fabric, Map<String, List<String>> findings,
                                    boolean all) {
        TopologyBuilder builder = new TopologyBuilder(system, fabric, findings, all);
        builder.drawPorts();
        boolean apart = builder.drawRemotePorts();
        builder.drawUnits(apart);
        builder.summarize();
        return builder.topology;
    }

    // ---- The host's side ----

    private void drawPorts() {
        if (fabric.adapters.isEmpty()) {
            host.is(State.UNUSED, "no host bus adapters");
        }
        for (Fabric.Adapter adapter : fabric.adapters) {
            Node box = topology.node(Kind.ADAPTER, adapter.place(), "Adapter " + adapter.index);
            box.line("Manufacturer", name(adapter.instance, HostBusAdapterProvider.manufacturer));
            box.line("Model", name(adapter.instance, HostBusAdapterProvider.model));
            box.fact("Description", name(adapter.instance, HostBusAdapterProvider.modelDescription));
            box.fact("Serial number", name(adapter.instance, HostBusAdapterProvider.serialNumber));
            box.fact("Node WWN", name(adapter.instance, HostBusAdapterProvider.name));
            box.fact("Firmware", name(adapter.instance, HostBusAdapterProvider.firmwareVersion));
            box.fact("Driver", name(adapter.instance, HostBusAdapterProvider.driverName) + " "
                     + name(adapter.instance, HostBusAdapterProvider.driverVersion));
            blame(box, adapter.place(), "");
            if (adapter.ports.isEmpty() && adapter.instance != null) {
                box.is(State.UNUSED, "no ports");
            }
            addWay(List.of(host, box));
            adapter.ports.forEach(port -> drawPort(port, box));
        }
    }

    private void drawPort(Fabric.Port port, Node adapter) {
        Node box = topology.node(Kind.PORT, port.place(), "Port " + port.index);
        describePort(box, port.instance);
        box.fact("OS device", name(port.instance, HbaPortProvider.osDeviceName));
        blame(box, port.place(), "");
        if (port.remotePorts.isEmpty() && port.instance != null) {
            box.is(State.UNUSED, "no remote ports");
        } else if (port.instance != null && port.remotePorts.stream().allMatch(remote -> remote.mappings.isEmpty())) {
            box.is(State.UNUSED, "no logical units");
        }
        List<Node> way = new ArrayList<>(List.of(host, adapter, box));
        String name = name(port.instance, HbaPortProvider.fabricName);
        if (!name.isEmpty()) {
            Node switches = topology.node(Kind.FABRIC, "fabric " + name, "Fabric");
            switches.line("Name", name);
            switches.fact("Joined by " + port.place(), PortStates.name(port.instance));
            way.add(switches);
        }
        addWay(way);
        waysToPorts.put(port, way);
    }

    // ---- The arrays' side ----

    /** Whether each remote port has a box of its own. */
    private boolean drawRemotePorts() {
        Map<Object, Remote> remotes = new LinkedHashMap<>();
        fabric.remotePorts().forEach(view -> remotes.computeIfAbsent(
            wwn(view).isEmpty() ? view : List.of(name(view.instance, HbaPortProvider.nodeWWN), wwn(view)),
            found -> new Remote()).views.add(view));
        remotePorts = remotes.size();
        boolean apart = all || remotes.size() <= fewRemotePorts;
        if (apart) {
            remotes.values().forEach(this::drawRemotePort);
        } else {
            Function<Remote, Object> looks = remote -> List.of(
                troubles(remote), remote.views.stream().allMatch(view -> view.mappings.isEmpty()));
            boxes(remotes.values(), remote -> List.of(looks.apply(remote), seers(remote)), looks, fewBoxes)
                .forEach(box -> drawBoxOfRemotePorts(box));
        }
        return apart;
    }

    private void drawRemotePort(Remote remote) {
        Fabric.RemotePort first = remote.first();
        String name = !remote.isReadable() ? first.place() : "remote port " + wwn(first);
        Node box = topology.node(Kind.REMOTE_PORT, topology.nodes.containsKey(name) ? first.place() : name,
                                 remote.isReadable() ? "Remote port" : "Remote port " + first.index,
                                 group(remote.node()));
        describePort(box, first.instance);
        blame(box, remote);
        join(remote, box);
    }

    private void drawBoxOfRemotePorts(List<Remote> remotes) {
        if (remotes.size() == 1) {
            drawRemotePort(remotes.get(0));
            return;
        }
        Fabric.RemotePort first = remotes.get(0).first();
        Node box = topology.node(Kind.REMOTE_PORT, "remote ports like " + wwnOrPlace(first),
                                 count(remotes.size(), "remote port"));
        long arrays = remotes.stream().map(Remote::node).distinct().count();
        box.line("Arrays", "of " + count(arrays, "array"));
        box.line("WWNs", wwnOrPlace(first) + " …");
        blame(box, remotes.get(0));
        remotes.forEach(remote -> join(remote, box));
    }

    /** Joins the box to all ports that see the remote port. */
    private void join(Remote remote, Node box) {
        for (Fabric.RemotePort view : remote.views) {
            List<Node> way = new ArrayList<>(waysToPorts.get(view.port));
            Node end = way.get(way.size() - 1);
            way.add(box);
            addWay(way);
            topology.join(end, box).is(findings.containsKey(view.place()) ? State.TROUBLE
                                           : box.state == State.UNUSED ? State.UNUSED : State.GOOD);
            waysToRemotePorts.put(view, way);
            box.facts.putIfAbsent("Seen by " + view.port.place(),
                                  view.instance == null ? "not readable" : PortStates.name(view.instance));
        }
    }

    private void drawUnits(boolean apart) {
        boolean eachPath = all || paths.units.stream().mapToInt(unit -> unit.paths.size()).sum() <= fewPaths;
        int few = paths.units.size() <= fewUnits && eachPath ? fewOfArray : fewOfArrayOfMany;
        Map<String, List<LogicalUnit>> arrays = new LinkedHashMap<>();
        paths.units.forEach(
            unit -> arrays.computeIfAbsent(apart ? unit.node : "", added -> new ArrayList<>()).add(unit));
        for (List<LogicalUnit> units : arrays.values()) {
            Collection<List<LogicalUnit>> boxes = all || units.size() <= few
                ? units.stream().map(List::of).collect(Collectors.toList())
                : boxes(units, unit -> List.of(remark(unit), ways(unit)), this::remark,
                        apart ? fewBoxesOfArray : fewBoxes);
            boxes.forEach(box -> drawUnits(box, apart, eachPath));
        }
    }

    /** Draws logical units that share a box, and writes their rows. */
    private void drawUnits(List<LogicalUnit> units, boolean apart, boolean eachPath) {
        LogicalUnit first = units.get(0);
        LogicalUnit last = units.get(units.size() - 1);
        boolean single = units.size() == 1;
        String name = single ? first.place().strip() : first.place().strip() + " to " + last.place().strip();
        String title = single ? "LUN " + first.lun : count(units.size(), "logical unit");
        Node box = apart ? topology.node(Kind.UNIT, name, title, group(first.node))
            : topology.node(Kind.UNIT, name, title);
        if (!single) {
            box.line("LUNs", first.node.equals(last.node) ? "LUN " + first.lun + " to " + last.lun
                : "of " + count(units.stream().map(unit -> unit.node).distinct().count(), "array"));
        }
        List<String> devices = units.stream().flatMap(unit -> unit.paths.stream()).map(path -> text(path.osDeviceName))
            .filter(device -> !device.isEmpty()).distinct().collect(Collectors.toList());
        devices.stream().limit(namesInBox).forEach(box.lines::add);
        if (devices.size() > namesInBox) {
            box.lines.add(String.format(Locale.ROOT, "and %,d more", devices.size() - namesInBox));
        }
        box.fact("Devices", String.join(", ", single ? devices : box.lines.subList(1, box.lines.size())));
        box.fact("Array", first.node.equals(last.node) ? first.node : "");
        if (paths.lacksWays(first)) {
            box.is(first.onlinePaths() == 1 ? State.ONE_PATH : State.TROUBLE, remark(first));
        }
        Map<Node, List<LogicalUnit.Path>> carried = new LinkedHashMap<>();
        for (LogicalUnit unit : units) {
            for (LogicalUnit.Path path : unit.paths) {
                List<Node> way = new ArrayList<>(waysToRemotePorts.get(path.remote));
                carried.computeIfAbsent(way.get(way.size() - 1), added -> new ArrayList<>()).add(path);
                way.add(box);
                topology.ways.add(way);
                addRow(box, unit, path);
            }
        }
        if (single && eachPath) {
            carried.forEach((end, ways) -> ways.forEach(path -> drawPath(end, box, path)));
        } else {
            carried.forEach((end, ways) -> drawPaths(end, box, ways));
        }
    }

    private void drawPath(Node end, Node box, LogicalUnit.Path path) {
        String label = path.remote.port.place() + " to " + wwnOrPlace(path.remote) + ", " + text(path.osDeviceName)
            + (path.isOnline() ? "" : ", not online");
        topology.draw(end, box, "", label, path.isOnline() ? State.GOOD : State.TROUBLE);
        box.fact("Path " + (box.facts.keySet().stream().filter(fact -> fact.startsWith("Path ")).count() + 1), label);
    }

    /** All paths from there to a box are one line. */
    private void drawPaths(Node end, Node box, List<LogicalUnit.Path> carried) {
        long online = carried.stream().filter(LogicalUnit.Path::isOnline).count();
        String number = count(carried.size(), "path");
        topology.draw(end, box, number, end.name + ": " + number + String.format(Locale.ROOT, ", %,d online", online),
                      online == carried.size() ? State.GOOD : State.TROUBLE);
        box.fact("From " + end.name, number);
    }

    private void addRow(Node box, LogicalUnit unit, LogicalUnit.Path path) {
        topology.row(box, unit.node, unit.lun.toString(), remark(unit), text(path.osDeviceName),
                     String.valueOf(path.adapter), String.valueOf(path.port), text(path.portWWN),
                     PortStates.name(path.portState), text(path.remotePort), PortStates.name(path.remotePortState),
                     text(path.scsiBus), text(path.targetId));
    }

    private void summarize() {
        topology.summary = String.join(
            ", ", count(fabric.adapters.size(), "adapter"), count(fabric.ports().size(), "port"),
            count(remotePorts, "remote port"), count(paths.units.size(), "logical unit"),
            count(topology.rows.size(), "path"));
    }

    // ---- What both sides need ----

    private static void describePort(Node box, TrInstance port) {
        if (port == null) {
            return;
        }
        box.line("Port WWN", name(port, HbaPortProvider.permanentAddress));
        box.line("Name", name(port, HbaPortProvider.name));
        String speed = PortFacts.speed(port);
        box.lines.add(PortStates.isOk(port) ? PortStates.name(port) + ", " + speed : speed);
        box.fact("State", PortStates.name(port));
        box.fact("Speed", speed);
        box.fact("Type", PortFacts.type(port));
        box.fact("FC ID", PortFacts.fcId(port));
        box.fact("Node WWN", name(port, HbaPortProvider.nodeWWN));
    }

    private void blame(Node box, String place, String whose) {
        findings.getOrDefault(place, List.of()).forEach(message -> box.is(State.TROUBLE, message + whose));
    }

    /** A finding is that of the ports that see it, unless all see the same. */
    private void blame(Node box, Remote remote) {
        boolean alike = remote.views.stream().map(view -> findings.get(view.place())).distinct().count() == 1;
        remote.views.forEach(
            view -> blame(box, view.place(), alike ? "" : " (seen by " + view.port.place() + ")"));
        if (remote.views.stream().allMatch(view -> view.instance != null && view.mappings.isEmpty())) {
            box.is(State.UNUSED, "no logical units");
        }
    }

    private List<String> troubles(Remote remote) {
        return remote.views.stream().flatMap(view -> findings.getOrDefault(view.place(), List.of()).stream()).distinct()
            .collect(Collectors.toList());
    }

    private static List<Fabric.Port> seers(Remote remote) {
        return remote.views.stream().map(view -> view.port).collect(Collectors.toList());
    }

    /** What is to be remarked on a unit; mostly nothing. */
    private String remark(LogicalUnit unit) {
        return !paths.lacksWays(unit) ? ""
            : (unit.onlinePaths() == 1 ? "one path left" : "no path left")
                + (unit.paths.size() == 1 ? "" : " of " + unit.paths.size());
    }

    private List<List<Node>> ways(LogicalUnit unit) {
        return unit.paths.stream().map(path -> waysToRemotePorts.get(path.remote)).collect(Collectors.toList());
    }

    /** Remembers the way, and draws what of it is not drawn yet. */
    private void addWay(List<Node> way) {
        topology.ways.add(List.copyOf(way));
        for (int i = 1; i < way.size(); i++) {
            topology.join(way.get(i - 1), way.get(i));
        }
    }

    /** Items that look alike in both respects; when that makes too many lots, those that do in the second. */
    private static <T> Collection<List<T>> boxes(Collection<T> items, Function<T, Object> finely,
                                                 Function<T, ?> coarsely, int most) {
        Collection<List<T>> fine = lots(items, finely);
        return fine.size() <= most ? fine : lots(items, coarsely);
    }

    private static <T> Collection<List<T>> lots(Collection<T> items, Function<T, ?> by) {
        return items.stream().collect(Collectors.groupingBy(by, LinkedHashMap::new, Collectors.toList())).values();
    }

    /** The frame's title; empty when there is none, for want of a name. */
    private static String group(String node) {
        return PortFacts.name(node).isEmpty() ? "" : "Array " + node;
    }

    private static String wwn(Fabric.RemotePort remote) {
        return name(remote.instance, HbaPortProvider.permanentAddress);
    }

    private static String wwnOrPlace(Fabric.RemotePort remote) {
        return wwn(remote).isEmpty() ? remote.place() : wwn(remote);
    }

    private static String name(TrInstance instance, TrProperty property) {
        return instance == null ? "" : PortFacts.name(instance, property);
    }

    private static String text(Object value) {
        return Objects.toString(value, "").strip();
    }

    private static String count(long number, String noun) {
        return String.format(Locale.ROOT, "%,d %s%s", number, noun, number == 1 ? "" : "s");
    }
}
