package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.PortWords;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collection;
import java.util.Comparator;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.Collectors;

/** What the latest recordings tell, as far as hosts are held against each other. */
final class Network {
    /** A host by its latest recording. */
    static final class Host {
        final String name;
        final String recordedAt;
        /** The array ports that it has discovered. */
        final Set<ArrayPort> seen = new HashSet<>();
        /** What it shares with other hosts. */
        final List<Sharing> sharings = new ArrayList<>();

        private final long snapshot;

        private Host(long snapshot, String name, String recordedAt) {
            this.snapshot = snapshot;
            this.name = name;
            this.recordedAt = recordedAt;
        }
    }

    /** Where ports of a host are online. */
    static final class Attachment {
        final String fabric;
        /** By fabric and domain; null for none. */
        final String throughSwitch;

        private Attachment(String fabric, int domain) {
            this.fabric = fabric;
            throughSwitch = switchName(fabric, domain);
        }
    }

    /**
     * A port of a node that presents units, in a fabric; without a name, that may be any. Its node and its switch are
     * what hosts tell that reach units there; where none does, what all tell.
     */
    static final class ArrayPort {
        final String fabric;
        final String wwn;
        /** Several where hosts do not agree. */
        final Set<String> nodes = new HashSet<>();
        /** Those that have discovered it, of which some may not see it online. */
        final List<Host> hosts = new ArrayList<>();
        final Set<Host> offlineTo = new HashSet<>();
        /** Whether any host reaches units there. */
        boolean isUsed;
        long initiators;
        private int domain;

        private ArrayPort(String fabric, String wwn) {
            this.fabric = fabric;
            this.wwn = wwn;
        }

        /** Those that reach units there tell first. */
        private void tell(String node, int itsDomain, boolean reachesUnits) {
            isUsed |= reachesUnits;
            if (reachesUnits == isUsed) {
                nodes.add(node);
                nodes.remove("");
                domain = Math.max(domain, itsDomain);
            }
        }

        String throughSwitch() {
            return switchName(fabric, domain);
        }
    }

    /** Units that the same hosts have, two or more. */
    static final class Sharing {
        /** By their numbers in {@link #hosts}, in order. */
        final int[] hosts;
        final List<Long> units;

        private Sharing(int[] hosts, List<Long> units) {
            this.hosts = hosts;
            this.units = units;
        }
    }

    /** By name. */
    final List<Host> hosts = new ArrayList<>();
    final List<Sharing> sharings = new ArrayList<>();
    /** Those that present units. */
    final Map<String, List<ArrayPort>> portsOfNode = new HashMap<>();

    private final Store store;
    private final Map<Long, Host> bySnapshot = new HashMap<>();

    Network(Store store) {
        this.store = store;
        readHosts();
        readArrayPorts();
        readUnits();
    }

    static String switchName(String fabric, int domain) {
        return fabric.isEmpty() || domain == 0 ? null : fabric + "/" + domain;
    }

    /** The host of which that is the latest recording. */
    Host host(long snapshot) {
        return bySnapshot.get(snapshot);
    }

    /** The hosts of which those are the latest recordings, put together by a query. */
    List<Host> hosts(String snapshots) {
        return Arrays.stream(Store.numbers(snapshots)).mapToObj(this::host).collect(Collectors.toList());
    }

    List<Host> hosts(Sharing sharing) {
        return Arrays.stream(sharing.hosts).mapToObj(hosts::get).collect(Collectors.toList());
    }

    /** What presents these units to any host; no set for a unit that nothing presents. */
    Map<Long, Set<String>> nodes(Collection<Long> units) {
        Map<Long, Set<String>> nodes = new HashMap<>();
        store.queryAbout("SELECT DISTINCT r.unit_id, r.nodes FROM latest_snapshot s"
                         + " JOIN reach r ON r.snapshot_id = s.snapshot_id"
                         + " WHERE r.unit_id IN (:these) AND r.nodes <> ''",
                         row -> nodes.computeIfAbsent(row.getLong(1), none -> new HashSet<>())
                             .addAll(List.of(row.getString(2).split(" "))), units);
        return nodes;
    }

    /** What these units are called. */
    Map<Long, String> identities(Collection<Long> units) {
        Map<Long, String> identities = new HashMap<>();
        store.queryAbout("SELECT id, identity FROM unit WHERE id IN (:these)",
                         row -> identities.put(row.getLong(1), row.getString(2)), units);
        return identities;
    }

    /** Where these hosts have ports that are online; no list for a host that has none. */
    Map<Host, List<Attachment>> attachments(Collection<Host> those) {
        Map<Host, List<Attachment>> attachments = new HashMap<>();
        store.queryAbout("SELECT DISTINCT snapshot_id, fabric, domain FROM port WHERE snapshot_id IN (:these)"
                         + " AND state = '" + PortWords.ONLINE + "'",
                         row -> attachments.computeIfAbsent(host(row.getLong(1)), none -> new ArrayList<>())
                             .add(new Attachment(row.getString(2), row.getInt(3))),
                         those.stream().map(host -> host.snapshot).collect(Collectors.toSet()));
        return attachments;
    }

    private void each(String sql, Store.Row<?> row) {
        store.query(sql, row);
    }

    private void readHosts() {
        each("SELECT snapshot_id, host, recorded_at FROM latest_snapshot", row -> {
            Host host = new Host(row.getLong(1), row.getString(2), row.getString(3));
            bySnapshot.put(host.snapshot, host);
            return hosts.add(host);
        });
        hosts.sort(Comparator.comparing(host -> host.name));
    }

    private void readArrayPorts() {
        Map<List<String>, ArrayPort> ports = new LinkedHashMap<>();
        each("SELECT g.fabric, g.remote_wwn, g.remote_node, MAX(g.remote_domain), MAX(g.units) AS units,"
             + " SUM(g.initiators), " + store.joined("g.snapshot_id") + ", "
             + store.joined("CASE WHEN g.remote_state <> '" + PortWords.ONLINE + "' THEN g.snapshot_id END")
             + " FROM latest_snapshot s JOIN sight g ON g.snapshot_id = s.snapshot_id"
             + " GROUP BY g.fabric, g.remote_wwn, g.remote_node, g.units > 0 ORDER BY units DESC", row -> {
            List<String> name = List.of(row.getString(1), row.getString(2));
            ArrayPort port = ports.computeIfAbsent(name, added -> new ArrayPort(name.get(0), name.get(1)));
            port.tell(row.getString(3), row.getInt(4), row.getLong(5) > 0);
            port.initiators += row.getLong(6);
            port.hosts.addAll(hosts(row.getString(7)));
            return port.offlineTo.addAll(hosts(row.getString(8)));
        });
        ports.values().forEach(port -> port.nodes.forEach(
            node -> portsOfNode.computeIfAbsent(node, none -> new ArrayList<>()).add(port)));
        portsOfNode.values().removeIf(those -> those.stream().noneMatch(port -> port.isUsed));
        portsOfNode.values().forEach(those -> those.forEach(
            port -> port.hosts.forEach(host -> host.seen.add(port))));
    }

    private void readUnits() {
        Map<String, List<Integer>> alike = new LinkedHashMap<>(); // the numbers of hosts that have the same units
        Map<Host, Integer> numbers = new HashMap<>();
        hosts.forEach(host -> numbers.put(host, numbers.size()));
        each("SELECT s.snapshot_id, (SELECT " + store.joined("r.unit_id")
             + " FROM reach r WHERE r.snapshot_id = s.snapshot_id) AS units FROM latest_snapshot s", row -> {
            String units = row.getString(2);
            return units != null && alike.computeIfAbsent(units, none -> new ArrayList<>())
                .add(numbers.get(host(row.getLong(1))));
        });
        findSharings(alike);
        for (Sharing sharing : sharings) {
            Arrays.stream(sharing.hosts).forEach(host -> hosts.get(host).sharings.add(sharing));
        }
    }

    /** Units are put together that the same hosts have: there are far fewer such groups than units. */
    private void findSharings(Map<String, List<Integer>> alike) {
        Map<Long, List<List<Integer>>> having = new LinkedHashMap<>();
        alike.forEach((units, those) -> Arrays.stream(Store.numbers(units)).forEach(
            unit -> having.computeIfAbsent(unit, none -> new ArrayList<>()).add(those)));
        Map<List<List<Integer>>, List<Long>> together = new LinkedHashMap<>();
        having.forEach((unit, kinds) -> together.computeIfAbsent(kinds, none -> new ArrayList<>()).add(unit));
        together.forEach((kinds, units) -> {
            int[] those = kinds.stream().flatMap(List::stream).mapToInt(host -> host).sorted().toArray();
            if (those.length > 1) {
                sharings.add(new Sharing(those, units));
            }
        });
    }
}
