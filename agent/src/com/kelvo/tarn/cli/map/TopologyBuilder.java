package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.cli.map.Topology.Kind;
import com.kelvo.tarn.cli.map.Topology.Node;
import com.kelvo.tarn.cli.map.Topology.State;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Collectors;

/** Makes the topology of what a host sees of its storage network: boxes and the lines between them. */
public final class TopologyBuilder {
    private final Topology topology;
    private final Fabric fabric;
    private final Paths paths;
    private final Grouping grouping;
    private final Map<String, List<String>> findings;
    private final Node host;
    /** The things from the host to each port, and to each remote port as a port sees it. */
    private final Map<Fabric.Port, List<Node>> toPorts = new HashMap<>();
    private final Map<Fabric.RemotePort, List<Node>> toRemotePorts = new HashMap<>();

    private TopologyBuilder(SolarisComputerSystem system, Fabric fabric, Map<String, List<String>> findings,
                            boolean all) {
        String name = system.hostName().isBlank() ? "unnamed host" : system.hostName();
        topology = new Topology("Storage network of " + name);
        host = topology.node(Kind.HOST, "host", name);
        host.fact("Name", system.hostName());
        host.line("Platform", system.platform());
        host.fact("System", system.systemName() + " " + system.version());
        this.fabric = fabric;
        this.findings = findings;
        paths = new Paths(fabric);
        grouping = new Grouping(fabric, paths, all);
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
        builder.draw();
        return builder.topology;
    }

    private void draw() {
        if (fabric.adapters.isEmpty()) {
            host.is(State.UNUSED, "no host bus adapters");
        }
        fabric.adapters.forEach(this::drawAdapter);
        grouping.remotePorts(findings).forEach(this::drawRemotePorts);
        grouping.units(unit -> unit.paths.stream().map(path -> toRemotePorts.get(path.remote))
                                   .collect(Collectors.toList())).forEach(this::drawUnits);
        topology.summary = String.join(
            ", ", Wording.count(fabric.adapters.size(), "adapter"), Wording.count(fabric.ports().size(), "port"),
            Wording.count(grouping.remotes.size(), "remote port"), Wording.count(paths.units.size(), "logical unit"),
            Wording.count(topology.rows.size(), "path"));
    }

    private void drawAdapter(Fabric.Adapter adapter) {
        Node box = topology.node(Kind.ADAPTER, adapter.place(), "Adapter " + adapter.index);
        Wording.describe(box, adapter);
        blame(box, adapter.place(), "");
        if (adapter.ports.isEmpty() && adapter.instance != null) {
            box.is(State.UNUSED, "no ports");
        }
        add(List.of(host, box));
        adapter.ports.forEach(port -> drawPort(port, box));
    }

    private void drawPort(Fabric.Port port, Node adapter) {
        Node box = topology.node(Kind.PORT, port.place(), "Port " + port.index);
        Wording.describe(box, port.instance);
        box.fact("OS device", Instances.name(port.instance, HbaPortProvider.osDeviceName));
        blame(box, port.place(), "");
        if (port.remotePorts.isEmpty() && port.instance != null) {
            box.is(State.UNUSED, "no remote ports");
        } else if (port.instance != null && port.remotePorts.stream().allMatch(remote -> remote.mappings.isEmpty())) {
            box.is(State.UNUSED, "no logical units");
        }
        List<Node> path = new ArrayList<>(List.of(host, adapter, box));
        String name = Instances.name(port.instance, HbaPortProvider.fabricName);
        if (!name.isEmpty()) {
            Node switches = topology.node(Kind.FABRIC, "fabric " + name, "Fabric");
            switches.line("Name", name);
            switches.fact("Joined by " + port.place(), PortWords.of(port.instance, HbaPortProvider.portState));
            path.add(switches);
        }
        add(path);
        toPorts.put(port, path);
    }

    /** Draws remote ports that share a box. */
    private void drawRemotePorts(List<Grouping.Remote> remotes) {
        Grouping.Remote first = remotes.get(0);
        Fabric.RemotePort view = first.first();
        Node box;
        if (remotes.size() == 1) {
            boolean named = !first.wwn().isEmpty() && !topology.nodes.containsKey("remote port " + first.wwn());
            box = topology.node(Kind.REMOTE_PORT, named ? "remote port " + first.wwn() : view.place(),
                                first.wwn().isEmpty() ? "Remote port " + view.index : "Remote port",
                                Wording.group(first.node()));
            Wording.describe(box, view.instance);
        } else {
            box = topology.node(Kind.REMOTE_PORT, "remote ports like " + Wording.wwnOrPlace(view),
                                Wording.count(remotes.size(), "remote port"));
            Wording.describe(box, remotes);
        }
        blame(box, first);
        remotes.forEach(remote -> join(remote, box));
    }

    /** Joins the box to all ports that see the remote port. */
    private void join(Grouping.Remote remote, Node box) {
        for (Fabric.RemotePort view : remote.views) {
            List<Node> path = new ArrayList<>(toPorts.get(view.port));
            Node end = path.get(path.size() - 1);
            path.add(box);
            add(path);
            topology.join(end, box).is(findings.containsKey(view.place()) ? State.TROUBLE
                                           : box.state == State.UNUSED ? State.UNUSED : State.GOOD);
            toRemotePorts.put(view, path);
            box.facts.putIfAbsent("Seen by " + view.port.place(), view.instance == null ? "not readable"
                                      : PortWords.of(view.instance, HbaPortProvider.portState));
        }
    }

    /** Draws logical units that share a box, and writes their rows. */
    private void drawUnits(List<LogicalUnit> units) {
        LogicalUnit first = units.get(0);
        String remark = Wording.remark(first);
        Node box = topology.node(Kind.UNIT, Wording.name(units), Wording.title(units),
                                 grouping.apart ? Wording.group(first.node) : "");
        Wording.describeUnits(box, units);
        if (first.lacksPaths()) {
            box.is(first.onlinePaths() == 1 ? State.ONE_PATH : State.TROUBLE, remark);
        }
        Map<Node, List<LogicalUnit.Path>> carried = new LinkedHashMap<>();
        for (LogicalUnit unit : units) {
            for (LogicalUnit.Path path : unit.paths) {
                List<Node> things = new ArrayList<>(toRemotePorts.get(path.remote));
                carried.computeIfAbsent(things.get(things.size() - 1), added -> new ArrayList<>()).add(path);
                things.add(box);
                topology.paths.add(things);
                topology.row(box, Wording.cells(unit, path, remark));
            }
        }
        if (units.size() == 1 && grouping.eachPath) {
            int number = 0;
            for (Map.Entry<Node, List<LogicalUnit.Path>> each : carried.entrySet()) {
                for (LogicalUnit.Path path : each.getValue()) {
                    drawPath(each.getKey(), box, path, ++number);
                }
            }
        } else {
            carried.forEach((end, each) -> drawPaths(end, box, each));
        }
    }

    private void drawPath(Node end, Node box, LogicalUnit.Path path, int number) {
        String label = Wording.label(path);
        topology.draw(end, box, "", label, path.isOnline() ? State.GOOD : State.TROUBLE);
        box.fact("Path " + number, label);
    }

    /** All paths from there to a box are one line. */
    private void drawPaths(Node end, Node box, List<LogicalUnit.Path> carried) {
        long online = carried.stream().filter(LogicalUnit.Path::isOnline).count();
        String number = Wording.count(carried.size(), "path");
        topology.draw(end, box, number, end.name + ": " + number + String.format(Locale.ROOT, ", %,d online", online),
                      online == carried.size() ? State.GOOD : State.TROUBLE);
        box.fact("From " + end.name, number);
    }

    private void blame(Node box, String place, String whose) {
        findings.getOrDefault(place, List.of()).forEach(message -> box.is(State.TROUBLE, message + whose));
    }

    /** A finding is that of the ports that see it, unless all see the same. */
    private void blame(Node box, Grouping.Remote remote) {
        boolean alike = remote.views.stream().map(view -> findings.get(view.place())).distinct().count() == 1;
        remote.views.forEach(
            view -> blame(box, view.place(), alike ? "" : " (seen by " + view.port.place() + ")"));
        if (remote.hasNoUnits() && remote.views.stream().allMatch(view -> view.instance != null)) {
            box.is(State.UNUSED, "no logical units");
        }
    }

    /** Remembers the path, and draws what of it is not drawn yet. */
    private void add(List<Node> path) {
        topology.paths.add(List.copyOf(path));
        for (int i = 1; i < path.size(); i++) {
            topology.join(path.get(i - 1), path.get(i));
        }
    }
}
