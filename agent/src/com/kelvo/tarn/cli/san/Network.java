package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.PortWords;
import java.nio.IntBuffer;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.LongStream;

/** What the latest recordings tell, as far as hosts are held against each other. */
final class Network {
    /** A host by its latest recording. */
    static final class Host {
        final String name;
        final String recordedAt;
        final List<Port> ports = new ArrayList<>();
        /** The array ports that it has discovered. */
        final Set<ArrayPort> seen = new HashSet<>();
        /** Those of them that it does not see online. */
        final Set<ArrayPort> seenOffline = new HashSet<>();
        /** What it shares with other hosts. */
        final List<Sharing> sharings = new ArrayList<>();

        private Host(String name, String recordedAt) {
            this.name = name;
            this.recordedAt = recordedAt;
        }

        boolean isOnlineIn(String fabric) {
            return ports.stream().anyMatch(port -> port.isOnline && port.fabric.equals(fabric));
        }
    }

    /** A port of a host. */
    static final class Port {
        final String wwn;
        final String fabric;
        /** By fabric and domain; null for none. */
        final String throughSwitch;
        final boolean isOnline;

        private Port(String wwn, String fabric, int domain, boolean isOnline) {
            this.wwn = wwn;
            this.fabric = fabric;
            this.isOnline = isOnline;
            throughSwitch = switchName(fabric, domain);
        }
    }

    /** A port of a node that presents units, in a fabric; without a name, that may be any. */
    static final class ArrayPort {
        final String fabric;
        final String wwn;
        final String node;
        final String throughSwitch;
        final List<Host> hosts = new ArrayList<>();
        final long initiators;
        /** Whether any host reaches units there. */
        final boolean isUsed;

        private ArrayPort(String fabric, String wwn, String node, int domain, long initiators, boolean isUsed) {
            this.fabric = fabric;
            this.wwn = wwn;
            this.node = node;
            this.initiators = initiators;
            this.isUsed = isUsed;
            throughSwitch = switchName(fabric, domain);
        }
    }

    /** Units that the same hosts have, two or more. */
    static final class Sharing {
        /** By their numbers in {@link #hosts}, in order. */
        final int[] hosts;
        final List<Long> units = new ArrayList<>();

        private Sharing(int[] hosts) {
            this.hosts = hosts;
        }
    }

    /** By name. */
    final List<Host> hosts = new ArrayList<>();
    final List<Sharing> sharings = new ArrayList<>();
    /** Those that present units. */
    final Map<String, List<ArrayPort>> portsOfNode = new HashMap<>();

    private static final String OF_HOST = " FROM reach r WHERE r.snapshot_id = s.snapshot_id)";

    private final Store store;
    private final Map<Long, Host> bySnapshot = new HashMap<>();
    private final Map<Long, Set<String>> nodes = new HashMap<>();
    private Map<Long, String> identities;

    Network(Store store) {
        this.store = store;
        readHosts();
        readPorts();
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

    /** Those that present the unit. */
    Set<String> nodes(long unit) {
        return nodes.getOrDefault(unit, Set.of());
    }

    String identity(long unit) {
        if (identities == null) {
            identities = new HashMap<>();
            each("SELECT id, identity FROM unit", row -> identities.put(row.getLong(1), row.getString(2)));
        }
        return identities.get(unit);
    }

    private void each(String sql, Store.Row<?> row) {
        store.query(sql, row);
    }

    private void readHosts() {
        each("SELECT snapshot_id, host, recorded_at FROM latest_snapshot", row -> {
            Host host = new Host(row.getString(2), row.getString(3));
            bySnapshot.put(row.getLong(1), host);
            return hosts.add(host);
        });
        hosts.sort(Comparator.comparing(host -> host.name));
    }

    private void readPorts() {
        Map<String, String> names = new HashMap<>();
        each("SELECT p.snapshot_id, p.wwn, p.fabric, p.domain, p.state FROM latest_snapshot s"
             + " JOIN port p ON p.snapshot_id = s.snapshot_id",
             row -> host(row.getLong(1)).ports.add(new Port(
                 row.getString(2), names.computeIfAbsent(row.getString(3), name -> name), row.getInt(4),
                 row.getString(5).equals(PortWords.ONLINE))));
    }

    private void readArrayPorts() {
        each("SELECT g.fabric, g.remote_wwn, MAX(g.remote_node), MAX(g.remote_domain), SUM(g.initiators),"
             + " MAX(g.units), " + store.joined("g.snapshot_id") + ", "
             + store.joined("CASE WHEN g.remote_state <> '" + PortWords.ONLINE + "' THEN g.snapshot_id END")
             + " FROM latest_snapshot s JOIN sight g ON g.snapshot_id = s.snapshot_id"
             + " WHERE g.remote_node IN (SELECT o.remote_node FROM latest_snapshot l"
             + " JOIN sight o ON o.snapshot_id = l.snapshot_id WHERE o.units > 0)"
             + " GROUP BY g.fabric, g.remote_wwn", row -> {
            ArrayPort port = new ArrayPort(row.getString(1), row.getString(2), row.getString(3), row.getInt(4),
                                           row.getLong(5), row.getLong(6) > 0);
            for (long snapshot : Store.numbers(row.getString(7))) {
                port.hosts.add(host(snapshot));
                host(snapshot).seen.add(port);
            }
            for (long snapshot : Store.numbers(row.getString(8))) {
                host(snapshot).seenOffline.add(port);
            }
            return portsOfNode.computeIfAbsent(port.node, none -> new ArrayList<>()).add(port);
        });
    }

    private void addNodes(String names, long[] units) {
        if (!names.isEmpty()) {
            Set<String> presenting = Set.of(names.split(" "));
            for (long unit : units) {
                nodes.merge(unit, presenting, Network::union);
            }
        }
    }

    /** One of them where that has all; many units have the same. */
    private static Set<String> union(Set<String> one, Set<String> other) {
        if (one.containsAll(other)) {
            return one;
        }
        Set<String> both = new HashSet<>(one);
        both.addAll(other);
        return both;
    }

    private void readUnits() {
        List<Long> mixed = new ArrayList<>(); // to which different nodes present different units
        Map<Host, Integer> numbers = new HashMap<>();
        hosts.forEach(host -> numbers.put(host, numbers.size()));
        Map<Long, Integer> places = new HashMap<>();
        List<Long> units = new ArrayList<>();
        // The unit's place above, the host's number below, so that sorting puts the hosts of a unit together.
        LongStream.Builder pairs = LongStream.builder();
        each("SELECT s.snapshot_id, (SELECT " + store.joined("r.unit_id") + OF_HOST
             + ", (SELECT MIN(r.nodes) || ',' || MAX(r.nodes)" + OF_HOST + " FROM latest_snapshot s", row -> {
            int host = numbers.get(host(row.getLong(1)));
            long[] reached = Store.numbers(row.getString(2));
            if (reached.length > 0) {
                String[] firstAndLast = row.getString(3).split(",", -1);
                if (firstAndLast[0].equals(firstAndLast[1])) {
                    addNodes(firstAndLast[0], reached);
                } else {
                    mixed.add(row.getLong(1));
                }
            }
            for (long unit : reached) {
                Integer place = places.putIfAbsent(unit, places.size());
                if (place == null) {
                    place = units.size();
                    units.add(unit);
                }
                pairs.add((long) place << Integer.SIZE | host);
            }
            return null;
        });
        store.queryAbout("SELECT nodes, " + store.joined("unit_id") + " FROM reach WHERE snapshot_id IN (:these)"
                         + " GROUP BY nodes", row -> {
            addNodes(row.getString(1), Store.numbers(row.getString(2)));
            return null;
        }, mixed);
        findSharings(pairs.build().sorted().toArray(), units);
    }

    /** Units are put together that the same hosts have: there are far fewer such groups than units. */
    private void findSharings(long[] seen, List<Long> units) {
        Map<IntBuffer, Sharing> byHosts = new LinkedHashMap<>();
        for (int from = 0, to = 0; from < seen.length; from = to) {
            long unit = seen[from] >> Integer.SIZE;
            while (to < seen.length && seen[to] >> Integer.SIZE == unit) {
                to++;
            }
            if (to - from > 1) {
                int[] those = Arrays.stream(seen, from, to).mapToInt(pair -> (int) pair).toArray();
                byHosts.computeIfAbsent(IntBuffer.wrap(those), none -> new Sharing(those)).units
                    .add(units.get((int) unit));
            }
        }
        sharings.addAll(byHosts.values());
        for (Sharing sharing : sharings) {
            Arrays.stream(sharing.hosts).forEach(host -> hosts.get(host).sharings.add(sharing));
        }
    }
}
