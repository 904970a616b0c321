package com.kelvo.tarn.cli.san;

import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.Collections;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** Whether hosts reach units by what is theirs to use: the fabrics, the switches, the ports of the arrays. */
final class PathRules {
    private static final int FEWEST_CROWDING = 8;
    private static final String ONE_WAY = "SELECT r.snapshot_id, r.unit_id, u.identity, r.one_fabric,"
        + " r.one_switch, r.second_switch, r.one_array_port"
        + " FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id JOIN unit u ON u.id = r.unit_id"
        + " WHERE r.paths >= 2 AND (r.one_fabric IS NOT NULL OR r.one_switch IS NOT NULL"
        + " OR r.one_array_port IS NOT NULL)";

    /** What all paths of a host to a unit share; null for nothing. */
    private static final class OneWay {
        private final Network.Host host;
        private final long unit;
        private final String identity;
        private final String fabric;
        private final String oneSwitch;
        private final String secondSwitch;
        private final String arrayPort;

        private OneWay(Network.Host host, ResultSet row, Map<String, String> texts) throws SQLException {
            this.host = host;
            unit = row.getLong(2);
            identity = once(row.getString(3), texts);
            fabric = once(row.getString(4), texts);
            oneSwitch = once(row.getString(5), texts);
            secondSwitch = once(row.getString(6), texts);
            arrayPort = once(row.getString(7), texts);
        }

        /** The text as it is there: many rows have the same. */
        private static String once(String text, Map<String, String> texts) {
            return text == null ? null : texts.computeIfAbsent(text, added -> added);
        }
    }

    private final Network network;
    private final NetworkFindings findings;
    /** Of the ports through which units are reached. */
    private final Map<String, Set<String>> fabrics = new HashMap<>();
    private final Map<String, Set<String>> switches = new HashMap<>();
    private final Map<String, Set<String>> arrayPorts = new HashMap<>();

    PathRules(Network network, NetworkFindings findings) {
        this.network = network;
        this.findings = findings;
        network.portsOfNode.forEach((node, ports) -> {
            fabrics.put(node, used(ports, port -> port.fabric.isEmpty() ? null : port.fabric));
            switches.put(node, used(ports, Network.ArrayPort::throughSwitch));
            arrayPorts.put(node, used(ports, port -> port.wwn));
        });
    }

    private static Set<String> used(List<Network.ArrayPort> ports, Function<Network.ArrayPort, String> what) {
        return ports.stream().filter(port -> port.isUsed).map(what).filter(Objects::nonNull)
            .collect(Collectors.toSet());
    }

    /** Where all paths share something of which the host has, or the array shows to others, a second. */
    void findOneWay(Store store) {
        Map<String, String> texts = new HashMap<>();
        List<OneWay> all = store.query(ONE_WAY, row -> new OneWay(network.host(row.getLong(1)), row, texts));
        Map<Long, Set<String>> nodes = network.nodes(all.stream().map(each -> each.unit).collect(Collectors.toSet()));
        Map<Network.Host, List<Network.Attachment>> attachments =
            network.attachments(all.stream().map(each -> each.host).collect(Collectors.toSet()));
        for (OneWay each : all) {
            List<Network.Attachment> places = attachments.getOrDefault(each.host, List.of());
            Set<String> presenting = nodes.getOrDefault(each.unit, Set.of());
            require(NetworkFault.UNIT_ONE_FABRIC, each, each.fabric, null,
                    Stream.concat(places.stream().map(place -> place.fabric), shown(fabrics, presenting)));
            require(NetworkFault.UNIT_ONE_SWITCH, each, each.oneSwitch, each.secondSwitch,
                    Stream.concat(places.stream().map(place -> place.throughSwitch), shown(switches, presenting)));
            require(NetworkFault.UNIT_ONE_ARRAY_PORT, each, each.arrayPort, null, shown(arrayPorts, presenting));
        }
    }

    private static Stream<String> shown(Map<String, Set<String>> ofNode, Set<String> nodes) {
        return nodes.stream().flatMap(node -> ofNode.getOrDefault(node, Set.of()).stream());
    }

    private void require(NetworkFault fault, OneWay found, String shared, String sharedToo, Stream<String> there) {
        if (shared != null && there.anyMatch(
                other -> other != null && !other.isEmpty() && !other.equals(shared) && !other.equals(sharedToo))) {
            findings.warn(fault, found.identity, found.host, shared);
        }
    }

    /** Where a host does not see an array port that two others see online which share a unit of that array with it. */
    void findZoningGaps() {
        Map<Network.Sharing, Set<Network.ArrayPort>> partly = new LinkedHashMap<>();
        for (Network.Sharing sharing : network.sharings) {
            Set<Network.ArrayPort> ports = seenByTwoButNotAll(network.hosts(sharing));
            if (!ports.isEmpty()) {
                partly.put(sharing, ports);
            }
        }
        Map<Long, Set<String>> nodes = network.nodes(
            partly.keySet().stream().flatMap(sharing -> sharing.units.stream()).collect(Collectors.toSet()));
        Map<Network.Host, List<Network.Attachment>> attachments = network.attachments(
            partly.keySet().stream().flatMap(sharing -> network.hosts(sharing).stream()).collect(Collectors.toSet()));
        partly.forEach((sharing, ports) -> {
            Set<String> presenting = sharing.units.stream()
                .flatMap(unit -> nodes.getOrDefault(unit, Set.of()).stream()).collect(Collectors.toSet());
            ports.removeIf(port -> Collections.disjoint(port.nodes, presenting));
            for (Network.Host host : network.hosts(sharing)) {
                ports.stream().filter(port -> !host.seen.contains(port) && attachments.getOrDefault(host, List.of())
                                      .stream().anyMatch(place -> place.fabric.equals(port.fabric)))
                    .forEach(port -> findings.warn(NetworkFault.ZONING_GAP, port.wwn, host, port.fabric));
            }
        });
    }

    private static Set<Network.ArrayPort> seenByTwoButNotAll(List<Network.Host> peers) {
        Map<Network.ArrayPort, Integer> seers = new LinkedHashMap<>();
        peers.forEach(host -> host.seen.stream()
            .filter(port -> !port.fabric.isEmpty() && !port.offlineTo.contains(host))
            .forEach(port -> seers.merge(port, 1, Integer::sum)));
        seers.values().removeIf(count -> count < 2 || count == peers.size());
        return seers.keySet();
    }

    /** Where an array port is seen by twice the initiators that are usual in its array. */
    void findCrowds() {
        network.portsOfNode.forEach((node, ports) -> {
            Map<String, List<Network.ArrayPort>> byName = ports.stream().filter(port -> port.isUsed)
                .collect(Collectors.groupingBy(port -> port.wwn));
            long[] counts = byName.values().stream().mapToLong(PathRules::initiators).sorted().toArray();
            byName.forEach((wwn, those) -> {
                long initiators = initiators(those);
                // Of an even number of ports, the median is between two.
                long twiceMedian = counts[counts.length / 2] + counts[(counts.length - 1) / 2];
                if (initiators >= Math.max(FEWEST_CROWDING, twiceMedian)) {
                    Set<Network.Host> hosts = new HashSet<>();
                    those.forEach(port -> hosts.addAll(port.hosts));
                    findings.warn(NetworkFault.ARRAY_PORT_CROWDED, wwn, hosts, initiators
                                  + " initiators see it, the median of its array's ports is " + twiceMedian / 2.0);
                }
            });
        });
    }

    private static long initiators(List<Network.ArrayPort> ports) {
        return ports.stream().mapToLong(port -> port.initiators).sum();
    }
}
