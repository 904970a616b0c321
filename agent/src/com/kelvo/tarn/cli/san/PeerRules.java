package com.kelvo.tarn.cli.san;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.stream.Collectors;

/** Whether hosts that share units share what they are to, and no more. */
final class PeerRules {
    /** Hosts that have no more in common need not be meant to be alike. */
    private static final int FEWEST_COMMON = 3;

    private final Network network;
    private final NetworkFindings findings;

    PeerRules(Network network, NetworkFindings findings) {
        this.network = network;
        this.findings = findings;
    }

    /** Where one host lacks units that all others have with which it shares three or more. */
    void findLacking() {
        Map<Network.Sharing, Network.Host> lacking = new LinkedHashMap<>();
        for (Network.Sharing sharing : network.sharings) {
            Map<Integer, Integer> common = commonWithOthers(sharing);
            common.values().removeIf(units -> units < FEWEST_COMMON);
            if (common.size() == 1) { // of two groups, neither is the one that lacks
                lacking.put(sharing, network.hosts.get(common.keySet().iterator().next()));
            }
        }
        Map<Long, String> identities = network.identities(
            lacking.keySet().stream().flatMap(sharing -> sharing.units.stream()).collect(Collectors.toList()));
        lacking.forEach((sharing, host) -> {
            String others = network.hosts(sharing).stream().map(other -> other.name).limit(2)
                .collect(Collectors.joining(", "))
                + (sharing.hosts.length > 2 ? " and " + (sharing.hosts.length - 2) + " more" : "");
            sharing.units.forEach(unit -> findings.warn(
                NetworkFault.HOST_LACKS_UNIT, identities.get(unit), host, others));
        });
    }

    /** The other hosts by how many of the units they have that all hosts of this sharing have. */
    private Map<Integer, Integer> commonWithOthers(Network.Sharing sharing) {
        Map<Integer, Integer> common = new HashMap<>();
        List<Network.Sharing> fewest = network.hosts(sharing).stream().map(host -> host.sharings)
            .min(Comparator.comparing(List::size)).orElseThrow();
        for (Network.Sharing larger : fewest) {
            if (larger.hosts.length > sharing.hosts.length) {
                Set<Integer> others = Arrays.stream(larger.hosts).boxed().collect(Collectors.toSet());
                Arrays.stream(sharing.hosts).forEach(others::remove);
                if (others.size() == larger.hosts.length - sharing.hosts.length) { // it has all of these hosts
                    others.forEach(host -> common.merge(host, larger.units.size(), Integer::sum));
                }
            }
        }
        return common;
    }

    /**
     * Where two hosts share a unit and no other. Hosts that share the same are alike here, and taken together.
     */
    void findSharedApart() {
        Map<Network.Sharing, Set<List<Network.Sharing>>> kinds = new HashMap<>();
        Map<List<Network.Sharing>, List<Network.Host>> alike = network.hosts.stream()
            .filter(host -> !host.sharings.isEmpty())
            .collect(Collectors.groupingBy(host -> host.sharings, LinkedHashMap::new, Collectors.toList()));
        alike.keySet().forEach(kind -> kind.forEach(
            sharing -> kinds.computeIfAbsent(sharing, none -> new HashSet<>()).add(kind)));
        Map<Network.Sharing, List<Network.Host>> strangers = new LinkedHashMap<>();
        for (Network.Sharing sharing : network.sharings) {
            if (sharing.units.size() > 1) {
                continue;
            }
            for (List<Network.Sharing> kind : kinds.get(sharing)) {
                Set<List<Network.Sharing>> apart = new HashSet<>(kinds.get(sharing));
                if (kind.size() > 1 || alike.get(kind).size() == 1) {
                    apart.remove(kind);
                }
                kind.stream().filter(other -> other != sharing).forEach(other -> apart.removeAll(kinds.get(other)));
                if (!apart.isEmpty()) {
                    strangers.computeIfAbsent(sharing, none -> new ArrayList<>()).addAll(alike.get(kind));
                }
            }
        }
        Map<Long, String> identities = network.identities(
            strangers.keySet().stream().map(sharing -> sharing.units.get(0)).collect(Collectors.toList()));
        strangers.forEach((sharing, hosts) -> findings.warn(
            NetworkFault.UNIT_SHARED_APART, identities.get(sharing.units.get(0)), hosts,
            String.valueOf(sharing.hosts.length)));
    }
}
