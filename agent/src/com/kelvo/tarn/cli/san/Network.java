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

/** What the latest recordings tell, as far as hosts are held against each other. */
final class Network {
    /** A host by its latest recording. */
    static final class Host {
        final String name;
        final String recordedAt;
        final List<Port> ports = new ArrayList<>();
        /** The array ports that it has discovered. */
        final Set<ArrayPort> seen = new HashSet<>();
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
        long initiators;
        /** Whether any host reaches units there. */
        boolean isUsed;

        private ArrayPort(String fabric, String wwn, String node, int domain) {
            this.fabric = fabric;
            this.wwn = wwn;
            this.node = node;
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
        Map<String, String> names = new HashMap<>();
        each("SELECT unit_id, node FROM unit_node", row -> nodes
            .computeIfAbsent(row.getLong(1), none -> new HashSet<>(2))
            .add(names.computeIfAbsent(row.getString(2), name -> name)));
        Map<List<String>, ArrayPort> ports = new LinkedHashMap<>();
        each("SELECT g.snapshot_id, g.fabric, g.remote_wwn, g.remote_node, g.remote_domain, g.initiators, g.units"
             + " FROM latest_snapshot s JOIN sight g ON g.snapshot_id = s.snapshot_id"
             + " WHERE g.remote_node IN (SELECT node FROM unit_node)", row -> {
            String fabric = row.getString(2);
            String wwn = row.getString(3);
            ArrayPort port = ports.get(List.of(fabric, wwn));
            if (port == null) {
                port = new ArrayPort(fabric, wwn, row.getString(4), row.getInt(5));
                ports.put(List.of(fabric, wwn), port);
            }
            port.initiators += row.getLong(6);
            port.isUsed |= row.getLong(7) > 0;
            Host host = host(row.getLong(1));
            port.hosts.add(host);
            return host.seen.add(port);
        });
        ports.values().forEach(port -> portsOfNode.computeIfAbsent(port.node, none -> new ArrayList<>()).add(port));
    }

    /** Units are put together that the same hosts have: there are far fewer such groups than units. */
    private void readUnits() {
        Map<Host, Integer> numbers = new HashMap<>();
        hosts.forEach(host -> numbers.put(host, numbers.size()));
        Map<Long, Integer> places = new HashMap<>();
        List<Long> units = new ArrayList<>();
        // The unit's place above, the host's number below, so that sorting puts the hosts of a unit together.
        long[] seen = store.query(
            "SELECT r.unit_id, r.snapshot_id FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id",
            row -> {
                Integer place = places.get(row.getLong(1));
                if (place == null) {
                    place = places.size();
                    units.add(row.getLong(1));
                    places.put(row.getLong(1), place);
                }
                return (long) place << Integer.SIZE | numbers.get(host(row.getLong(2)));
            }).stream().mapToLong(pair -> pair).sorted().toArray();
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
