package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.cli.map.Topology.Edge;
import com.kelvo.tarn.cli.map.Topology.Kind;
import com.kelvo.tarn.cli.map.Topology.Node;
import com.kelvo.tarn.cli.map.Topology.Since;
import com.kelvo.tarn.cli.map.Topology.State;
import com.kelvo.tarn.cli.output.FindingWords;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import java.util.ArrayList;
import java.util.Collection;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Set;
import java.util.stream.Collectors;

/** Makes the topology of what a host sees of its storage network: boxes and the lines between them. */
public final class TopologyBuilder {
    private static final int LETTERS = 26;

    private final Topology topology;
    private final Fabric fabric;
    private final Paths paths;
    private final Grouping grouping;
    /** What is wrong with a thing, by its place; of a unit, what its number of paths does not say. */
    private final Map<String, List<String>> findings;
    /** By the fabric's name. */
    private final Map<String, Palette> hues = new HashMap<>();
    private final Map<String, String> titles = new HashMap<>();
    private final Node host;
    private int lostPaths;
    /** The things from the host to each port, and to each remote port as a port sees it. */
    private final Map<Fabric.Port, List<Node>> toPorts = new HashMap<>();
    private final Map<Fabric.RemotePort, List<Node>> toRemotePorts = new HashMap<>();

    private TopologyBuilder(SolarisComputerSystem system, Fabric fabric, Collection<Check.Finding> found, boolean all) {
        String name = system.hostName().isBlank() ? "unnamed host" : system.hostName();
        topology = new Topology("Storage network of " + name);
        host = topology.node(Kind.HOST, "host", name);
        host.fact("Name", system.hostName());
        host.line("Platform", system.platform());
        host.fact("System", system.systemName() + " " + system.version());
        this.fabric = fabric;
        findings = found.stream().filter(finding -> !finding.code.equals("single-path")).collect(Collectors.groupingBy(
            finding -> finding.subject, Collectors.mapping(FindingWords::brief, Collectors.toList())));
        paths = new Paths(fabric);
        grouping = new Grouping(fabric, paths, all);
        List<String> names = fabric.ports().stream().map(TopologyBuilder::fabricOf).filter(each -> !each.isEmpty())
            .distinct().sorted().collect(Collectors.toList());
        for (String each : names) {
            int number = hues.size();
            hues.put(each, number % 2 == 0 ? Palette.FABRIC_A : Palette.FABRIC_B);
            titles.put(each, "Fabric " + (names.size() <= LETTERS ? String.valueOf((char) ('A' + number))
                                              : number + 1));
        }
    }

    /**
     * {@return the boxes and lines that show a host's storage network}
     *
     * @param system the host
     * @param fabric what it sees
     * @param findings what is wrong with the host
     * @param before what it saw at an earlier time, which is shown, too; or null
     * @param all whether nothing shares a box
     */
    public static Topology topology(SolarisComputerSystem system, Fabric fabric, Collection<Check.Finding> findings,
                                    Fabric before, boolean all) {
        TopologyBuilder builder = new TopologyBuilder(system, fabric, findings, all);
        Changes changes = before == null ? null : new Changes(builder.paths, new Paths(before));
        builder.draw(changes);
        if (changes != null) {
            builder.drawLost(changes);
        }
        return builder.topology;
    }

    private void draw(Changes changes) {
        if (fabric.adapters.isEmpty()) {
            host.is(State.UNUSED, "no host bus adapters");
        }
        fabric.adapters.forEach(this::drawAdapter);
        grouping.remotePorts(findings).forEach(this::drawRemotePorts);
        grouping.units(this::remark, unit -> unit.paths.stream().map(path -> toRemotePorts.get(path.remote))
                                   .collect(Collectors.toList())).forEach(units -> drawUnits(units, changes));
        Map<String, List<LogicalUnit>> arrays =
            paths.units.stream().collect(Collectors.groupingBy(unit -> Wording.group(unit.node)));
        arrays.forEach((title, units) -> {
            String models = Wording.models(units);
            if (topology.groups.containsKey(title) && !models.isEmpty()) {
                topology.groups.get(title).title += ", " + models;
            }
        });
        topology.summary = String.join(
            ", ", Wording.count(fabric.adapters.size(), "adapter"), Wording.count(fabric.ports().size(), "port"),
            Wording.count(grouping.remotes.size(), "remote port"), Wording.count(paths.units.size(), "logical unit"),
            Wording.count(topology.rows.size(), "path"));
    }

    /** What is to be remarked on a unit; mostly nothing. */
    private String remark(LogicalUnit unit) {
        return unit.lacksPaths() ? Wording.remark(unit)
            : String.join("; ", findings.getOrDefault(unit.place(), List.of()));
    }

    private void drawAdapter(Fabric.Adapter adapter) {
        Node box = topology.node(Kind.ADAPTER, adapter.place(), "Adapter " + adapter.index);
        Wording.describe(box, adapter);
        blame(box, adapter.place(), "");
        if (adapter.ports.isEmpty() && adapter.instance != null) {
            box.is(State.UNUSED, "no ports");
        }
        box.order = String.format(Locale.ROOT, "%05d", adapter.index);
        add(List.of(host, box));
        adapter.ports.forEach(port -> drawPort(port, box));
    }

    private void drawPort(Fabric.Port port, Node adapter) {
        Node box = topology.node(Kind.PORT, port.place(), "Port " + port.adapter.index + "/" + port.index);
        box.order = String.format(Locale.ROOT, "%05d/%05d", port.adapter.index, port.index);
        topology.places.put(Changes.near(port), box);
        Wording.describe(box, port.instance);
        box.fact("OS device", Instances.name(port.instance, HbaPortProvider.osDeviceName));
        blame(box, port.place(), "");
        if (port.remotePorts.isEmpty() && port.instance != null) {
            box.is(State.UNUSED, "no remote ports");
        } else if (port.instance != null && port.remotePorts.stream().allMatch(remote -> remote.mappings.isEmpty())) {
            box.is(State.UNUSED, "no logical units");
        }
        List<Node> path = new ArrayList<>(List.of(host, adapter, box));
        String name = fabricOf(port);
        box.hue = hues.get(name);
        if (!name.isEmpty()) {
            Node switches = drawFabric(name);
            switches.fact("Joined by " + port.place(), PortWords.of(port.instance, HbaPortProvider.portState));
            path.add(switches);
        }
        add(path);
        topology.join(adapter, box).hue = box.hue;
        if (!name.isEmpty()) {
            topology.join(box, path.get(path.size() - 1)).hue = box.hue;
        }
        toPorts.put(port, path);
    }

    private Node drawFabric(String name) {
        Node switches = topology.node(Kind.FABRIC, "fabric " + name, titles.getOrDefault(name, "Fabric"));
        switches.hue = hues.get(name);
        switches.line("Name", name);
        return switches;
    }

    private static String fabricOf(Fabric.Port port) {
        return Instances.name(port.instance, HbaPortProvider.fabricName);
    }

    /** The colour of the only fabric of these ports; null when there is none, or more. */
    private Palette hue(Collection<Fabric.Port> ports) {
        Set<String> names = ports.stream().map(TopologyBuilder::fabricOf).collect(Collectors.toSet());
        return names.size() == 1 ? hues.get(names.iterator().next()) : null;
    }

    /** Draws remote ports that share a box. */
    private void drawRemotePorts(List<Grouping.Remote> remotes) {
        Grouping.Remote first = remotes.get(0);
        Fabric.RemotePort view = first.first();
        Node box;
        if (remotes.size() == 1) {
            boolean named = !first.wwn().isEmpty() && !topology.nodes.containsKey("remote port " + first.wwn());
            box = topology.node(Kind.REMOTE_PORT, named ? "remote port " + first.wwn() : view.place(),
                                (first.hasNoUnits() ? "Remote port" : "Array port")
                                    + (first.wwn().isEmpty() ? " " + view.index : ""),
                                Wording.group(first.node()));
            Wording.describe(box, view.instance);
        } else {
            box = topology.node(Kind.REMOTE_PORT, "remote ports like " + Wording.wwnOrPlace(view),
                                Wording.count(remotes.size(), first.hasNoUnits() ? "remote port" : "array port"));
            Wording.describe(box, remotes);
        }
        box.hue = hue(remotes.stream().flatMap(remote -> remote.views.stream()).map(each -> each.port)
                          .collect(Collectors.toList()));
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
            topology.places.put(view.place(), box);
            topology.places.put(Changes.far(view), box);
            Edge line = topology.join(end, box);
            line.hue = hues.get(fabricOf(view.port));
            line.is(findings.containsKey(view.place()) ? State.TROUBLE
                                           : box.state == State.UNUSED ? State.UNUSED : State.GOOD);
            toRemotePorts.put(view, path);
            box.facts.putIfAbsent("Seen by " + view.port.place(), view.instance == null ? "not readable"
                                      : PortWords.of(view.instance, HbaPortProvider.portState));
        }
    }

    /** Draws logical units that share a box, and writes their rows. */
    private void drawUnits(List<LogicalUnit> units, Changes changes) {
        LogicalUnit first = units.get(0);
        String remark = remark(first);
        Node box = topology.node(Kind.UNIT, Wording.name(units), Wording.title(units),
                                 grouping.apart ? Wording.group(first.node) : "");
        if (!remark.isEmpty()) {
            box.is(first.lacksPaths() && first.onlinePaths() == 0 ? State.TROUBLE : State.ONE_PATH, remark);
        }
        Wording.describeUnits(box, units);
        if (changes != null && units.stream().allMatch(changes::isNew)) {
            box.since = Since.ADDED;
        }
        Map<Node, List<LogicalUnit.Path>> carried = new LinkedHashMap<>();
        for (LogicalUnit unit : units) {
            topology.places.put(unit.place(), box);
            for (LogicalUnit.Path path : unit.paths) {
                List<Node> things = new ArrayList<>(toRemotePorts.get(path.remote));
                carried.computeIfAbsent(things.get(things.size() - 1), added -> new ArrayList<>()).add(path);
                things.add(box);
                topology.paths.add(things);
                topology.row(box, Wording.cells(unit, path, remark));
            }
        }
        box.hue = hue(units.stream().flatMap(unit -> unit.paths.stream()).map(path -> path.remote.port)
                          .collect(Collectors.toList()));
        if (box.hue != null && hues.size() > 1) {
            box.lines.add(titles.get(first.paths.get(0).fabric).replace("F", "f") + " alone");
        }
        int number = 0;
        for (Map.Entry<Node, List<LogicalUnit.Path>> each : carried.entrySet()) {
            if (units.size() == 1 && grouping.eachPath) {
                for (LogicalUnit.Path path : each.getValue()) {
                    drawPath(each.getKey(), box, path, ++number, changes);
                }
            } else {
                drawPaths(each.getKey(), box, each.getValue(), changes);
            }
        }
    }

    private void drawPath(Node end, Node box, LogicalUnit.Path path, int number, Changes changes) {
        String label = Wording.label(path);
        Edge line = topology.draw(end, box, "", label, path.isOnline() ? State.GOOD : State.TROUBLE);
        line.hue = hues.get(path.fabric);
        line.since = changes != null && changes.isNew(path) ? Since.ADDED : Since.SAME;
        box.fact("Path " + number, label);
    }

    /** All paths from there to a box are one line. */
    private void drawPaths(Node end, Node box, List<LogicalUnit.Path> carried, Changes changes) {
        long online = carried.stream().filter(LogicalUnit.Path::isOnline).count();
        String number = Wording.count(carried.size(), "path");
        Edge line = topology.draw(end, box, number, end.name + ": " + number
                                      + String.format(Locale.ROOT, ", %,d online", online),
                                  online == carried.size() ? State.GOOD : State.TROUBLE);
        line.hue = hue(carried.stream().map(path -> path.remote.port).collect(Collectors.toList()));
        line.since = changes != null && carried.stream().allMatch(changes::isNew) ? Since.ADDED : Since.SAME;
        box.fact("From " + end.name, number);
    }

    /** Draws what was there at the earlier time and is not now: the paths, and what they led through. */
    private void drawLost(Changes changes) {
        topology.compares = true;
        Map<List<Node>, Edge> lines = new HashMap<>();
        for (Changes.Lost lost : changes.lost) {
            List<Node> way = new ArrayList<>(List.of(host));
            Fabric.Port port = lost.path.remote.port;
            Node near = topology.at(Changes.near(port));
            if (near == null) {
                near = gone(topology.node(Kind.PORT, "port " + Changes.near(port), "Port"), Changes.near(port));
                topology.places.put(Changes.near(port), near);
                near.order = "~" + near.name;
                topology.join(host, near).since = Since.LOST;
            } else {
                String adapter = near.name.replaceFirst(" port .*", "");
                way.addAll(adapter.startsWith("adapter") ? List.of(topology.nodes.get(adapter)) : List.of());
            }
            way.add(near);
            if (!lost.path.fabric.isEmpty()) {
                boolean there = topology.nodes.containsKey("fabric " + lost.path.fabric);
                Node switches = drawFabric(lost.path.fabric);
                switches.since = there ? switches.since : Since.LOST;
                way.add(switches);
            }
            Node far = topology.at(Changes.far(lost.path.remote));
            if (far == null) {
                String known = Changes.far(lost.path.remote);
                far = gone(topology.node(Kind.REMOTE_PORT, "remote port " + known, "Array port",
                                         grouping.apart ? Wording.group(lost.unit.node) : ""), known);
                topology.places.put(known, far);
            }
            way.add(far);
            Node box = topology.at(lost.unit.place());
            if (box == null) {
                box = gone(topology.node(Kind.UNIT, lost.unit.place(), "LUN " + lost.unit.lun,
                                         grouping.apart ? Wording.group(lost.unit.node) : ""), "");
                Wording.describeUnits(box, List.of(lost.unit));
            }
            for (int i = 1; i < way.size(); i++) {
                int drawn = topology.edges.size();
                Edge line = topology.join(way.get(i - 1), way.get(i));
                line.since = topology.edges.size() > drawn ? Since.LOST : line.since;
            }
            way.add(box);
            topology.paths.add(way);
            Node end = far;
            Node unit = box;
            lines.computeIfAbsent(List.of(end, unit), added -> topology.draw(
                end, unit, "", "lost: " + Wording.label(lost.path), State.TROUBLE)).since = Since.LOST;
            box.fact("Lost path " + (++lostPaths), Wording.label(lost.path));
            topology.row(box, Wording.cells(lost.unit, lost.path, "path lost"));
        }
        topology.summary += "; " + Wording.count(changes.lost.size(), "path") + " lost, "
            + String.format(Locale.ROOT, "%,d new since the baseline", changes.added());
    }

    private static Node gone(Node box, String line) {
        box.line("Port WWN", line);
        box.is(State.TROUBLE, "was there before");
        box.since = Since.LOST;
        return box;
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
