package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.PortWords;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.ArrayList;
import java.util.Collection;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.function.Consumer;

/** A host as the store has it at present, with what connects it. */
final class NetworkHost {
    private static final String HOSTS = "SELECT snapshot_id, host FROM latest_snapshot WHERE snapshot_id IN (:these)";

    private static final String PORTS = "SELECT n.snapshot_id, n.adapter, n.port, n.wwn, n.fabric, n.domain, n.state,"
        + " a.model, a.firmware, a.node_wwn FROM port n"
        + " JOIN adapter a ON a.snapshot_id = n.snapshot_id AND a.adapter = n.adapter WHERE n.snapshot_id IN (:these)";

    private static final String MOUNTS = "SELECT snapshot_id, unit_id, mount_point FROM mount"
        + " WHERE unit_id IS NOT NULL AND snapshot_id IN (:these) ORDER BY mount_point";

    private static final String WAYS = "SELECT snapshot_id, adapter, port, remote_wwn, remote_node, remote_domain,"
        + " remote_state, unit_id, disk FROM path WHERE snapshot_id IN (:these) ORDER BY snapshot_id";

    /** A port of an adapter; what it does not tell is an empty text. */
    static final class Port {
        final String host;
        final int adapter;
        final int port;
        final String wwn;
        final String fabric;
        /** That of its switch; 0 for none. */
        final int domain;
        final boolean isOnline;
        final String model;
        final String firmware;
        final String nodeWwn;

        private Port(String host, ResultSet row) throws SQLException {
            this.host = host;
            adapter = row.getInt(2);
            port = row.getInt(3);
            wwn = row.getString(4);
            fabric = row.getString(5);
            domain = row.getInt(6);
            isOnline = row.getString(7).equals(PortWords.ONLINE);
            model = row.getString(8);
            firmware = row.getString(9);
            nodeWwn = row.getString(10);
        }

        /** What the adapter is called. */
        String adapterName() {
            return host + "/" + adapter;
        }

        /** The switch of that domain in the port's fabric; empty when there is none. */
        String switchOf(int otherDomain) {
            return fabric.isEmpty() || otherDomain == 0 ? "" : fabric + "/" + otherDomain;
        }
    }

    /** A path to a unit. */
    static final class Way {
        final Port near;
        final String farWwn;
        final String farNode;
        final int farDomain;
        final boolean isOnline;
        final long unit;
        /** Null when there is none. */
        final String disk;

        private Way(Port near, ResultSet row) throws SQLException {
            this.near = near;
            farWwn = row.getString(4);
            farNode = row.getString(5);
            farDomain = row.getInt(6);
            isOnline = near.isOnline && row.getString(7).equals(PortWords.ONLINE);
            unit = row.getLong(8);
            disk = row.getString(9);
        }

        /** The two ports that it is between; of a unit, these are one path however often they are listed. */
        String ends() {
            return (near.wwn.isEmpty() ? near.adapter + " " + near.port : near.wwn) + " " + farWwn;
        }
    }

    final String name;
    private final Map<Long, Port> ports = new TreeMap<>();
    final List<Way> ways = new ArrayList<>();
    /** Where file systems on it are mounted, by unit. */
    final Map<Long, List<String>> mounts = new TreeMap<>();

    private NetworkHost(String name) {
        this.name = name;
    }

    /** Tells the host of each of these snapshots, of which only a few are in memory at a time. */
    static void each(Store store, Collection<Long> snapshots, Consumer<NetworkHost> consumer) {
        List<Long> all = new ArrayList<>(snapshots);
        for (int from = 0; from < all.size(); from += Store.ASKED) {
            some(store, all.subList(from, Math.min(from + Store.ASKED, all.size())), consumer);
        }
    }

    private static void some(Store store, List<Long> snapshots, Consumer<NetworkHost> consumer) {
        TreeMap<Long, NetworkHost> hosts = new TreeMap<>();
        store.queryAbout(HOSTS, row -> hosts.put(row.getLong(1), new NetworkHost(row.getString(2))), snapshots);
        store.queryAbout(PORTS, row -> {
            NetworkHost host = hosts.get(row.getLong(1));
            return host.ports.put(place(row), new Port(host.name, row));
        }, snapshots);
        store.queryAbout(MOUNTS, row -> hosts.get(row.getLong(1)).mounts.computeIfAbsent(
            row.getLong(2), added -> new ArrayList<>()).add(row.getString(3)), snapshots);
        store.queryAbout(WAYS, row -> {
            long snapshot = row.getLong(1);
            while (hosts.firstKey() < snapshot) {
                consumer.accept(hosts.pollFirstEntry().getValue());
            }
            return hosts.get(snapshot).addWay(row);
        }, snapshots);
        hosts.values().forEach(consumer);
    }

    private boolean addWay(ResultSet row) throws SQLException {
        Port near = ports.get(place(row));
        return near != null && ways.add(new Way(near, row));
    }

    /** Orders ports by adapter and their number there. */
    private static long place(ResultSet row) throws SQLException {
        return (long) row.getInt(2) << Integer.SIZE | row.getInt(3);
    }

    Collection<Port> ports() {
        return ports.values();
    }
}
