package com.kelvo.tarn.cli.san;

import java.util.Arrays;
import java.util.Collection;
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
    private static final String ONE_WAY = "SELECT r.snapshot_id, r.unit_id, r.one_fabric, r.one_switch,"
        + " r.second_switch, r.one_array_port FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id"
        + " WHERE r.paths >= 2 AND (r.one_fabric IS NOT NULL OR r.one_switch IS NOT NULL"
        + " OR r.one_array_port IS NOT NULL)";

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
            switches.put(node, used(ports, port -> port.throughSwitch));
            arrayPorts.put(node, used(ports, port -> port.wwn));
        });
    }

    private static Set<String> used(List<Network.ArrayPort> ports, Function<Network.ArrayPort, String> what) {
        return ports.stream().filter(port -> port.isUsed).map(what).filter(Objects::nonNull)
            .collect(Collectors.toSet());
    }

    /** Where all paths share something of which the host has, or the array shows to others, a second. */
    void findOneWay(Store store) {
        store.query(ONE_WAY, row -> {
            Network.Host host = network.host(row.getLong(1));
            long unit = row.getLong(2);
            require(NetworkFault.UNIT_ONE_FABRIC, unit, host, online(host, port -> port.fabric), fabrics,
                    row.getString(3), null);
            require(NetworkFault.UNIT_ONE_SWITCH, unit, host, online(host, port -> port.throughSwitch), switches,
                    row.getString(4), row.getString(5));
            require(NetworkFault.UNIT_ONE_ARRAY_PORT, unit, host, Stream.empty(), arrayPorts, row.getString(6), null);
            return null;
        });
    }

    private static Stream<String> online(Network.Host host, Function<Network.Port, String> what) {
        return host.ports.stream().filter(port -> port.isOnline).map(what)
            .filter(name -> name != null && !name.isEmpty());
    }

    private void require(NetworkFault fault, long unit, Network.Host host, Stream<String> ofHost,
                         Map<String, Set<String>> ofNode, String shared, String sharedToo) {
        if (shared != null && Stream.concat(ofHost, network.nodes(unit).stream().flatMap(
                node -> ofNode.getOrDefault(node, Set.of()).stream()))
            .anyMatch(other -> !other.equals(shared) && !other.equals(sharedToo))) {
            findings.warn(fault, network.identity(unit), host, shared);
        }
    }

    /** Where a host does not see an array port that two others see online which share a unit of that array with it. */
    void findZoningGaps() {
        for (Network.Sharing sharing : network.sharings) {
            if (sharing.hosts.length > 2) {
                findZoningGaps(Arrays.stream(sharing.hosts).mapToObj(network.hosts::get).collect(Collectors.toList()),
                               sharing.units.stream().flatMap(unit -> network.nodes(unit).stream())
                                   .collect(Collectors.toSet()));
            }
        }
    }

    private void findZoningGaps(Collection<Network.Host> peers, Set<String> nodes) {
        Map<Network.ArrayPort, Integer> seers = new LinkedHashMap<>();
        for (Network.Host host : peers) {
            host.seen.stream().filter(port -> !port.fabric.isEmpty() && nodes.contains(port.node)
                                      && !host.seenOffline.contains(port))
                .forEach(port -> seers.merge(port, 1, Integer::sum));
        }
        seers.forEach((port, count) -> {
            if (count > 1 && count < peers.size()) {
                peers.stream().filter(host -> !host.seen.contains(port) && host.isOnlineIn(port.fabric))
                    .forEach(host -> findings.warn(NetworkFault.ZONING_GAP, port.wwn, host, port.fabric));
            }
        });
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
