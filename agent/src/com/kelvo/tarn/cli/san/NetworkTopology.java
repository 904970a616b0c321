package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.PortWords;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collection;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Function;

/**
 * The storage network as its hosts were last recorded. Each thing is there once and has a number, and hosts share what
 * they have in common, so that it stays small however many hosts are alike.
 */
public final class NetworkTopology {
    /** What is there once. */
    public abstract static class Thing {
        /** Its place in the network's list of its kind, from 0. */
        public final int number;

        private Thing(int number) {
            this.number = number;
        }
    }

    /** A name that ports are in one fabric by. */
    public static final class Fabric extends Thing {
        /** The name, never empty. */
        public final String name;

        private Fabric(int number, String name) {
            super(number);
            this.name = name;
        }
    }

    /** A switch of a fabric. */
    public static final class Switch extends Thing {
        /** Where it is. */
        public final Fabric fabric;
        /** Its domain; 0 when the addresses of what is plugged in do not tell one. */
        public final int domain;

        private Switch(int number, Fabric fabric, int domain) {
            super(number);
            this.fabric = fabric;
            this.domain = domain;
        }
    }

    /** A node that presents units: an array, or a controller of one. */
    public static final class Array extends Thing {
        /** Its name, which may be empty. */
        public final String node;
        private String product = "";

        private Array(int number, String node) {
            super(number);
            this.node = node;
        }

        private void name(String unit) {
            product = product.isEmpty() ? unit : product;
        }

        /** {@return what its units call themselves: vendor and product, or empty} */
        public String product() {
            return product;
        }
    }

    /** A remote port through which units are reached. */
    public static final class ArrayPort extends Thing {
        /** Its name, which may be empty. */
        public final String wwn;
        /** Whose it is. */
        public final Array array;
        /** Where it is plugged in; null in a fabric without a name. */
        public final Switch at;

        private ArrayPort(int number, String wwn, Array array, Switch at) {
            super(number);
            this.wwn = wwn;
            this.array = array;
            this.at = at;
        }
    }

    /** A model of adapters with what runs on it. */
    public static final class Model extends Thing {
        /** The model. */
        public final String name;
        /** The version of its firmware. */
        public final String firmware;
        /** The version of its driver. */
        public final String driver;

        private Model(int number, List<String> names) {
            super(number);
            name = names.get(0);
            firmware = names.get(1);
            driver = names.get(2);
        }
    }

    /** A logical unit. */
    public static final class Unit extends Thing {
        /** What it is called. */
        public final String identity;
        /** Its vendor and product, or empty. */
        public final String product;
        /** Null when it is not known. */
        public final Long sizeBytes;

        private Unit(int number, String identity, String product, Long sizeBytes) {
            super(number);
            this.identity = identity;
            this.product = product;
            this.sizeBytes = sizeBytes;
        }
    }

    /** From a port of a host to one of an array. */
    public static final class Step {
        /** The port's place among its host's. */
        public final int port;
        /** The other end. */
        public final ArrayPort arrayPort;
        /** Whether both ends are online. */
        public final boolean isOnline;

        private Step(int port, ArrayPort arrayPort, boolean isOnline) {
            this.port = port;
            this.arrayPort = arrayPort;
            this.isOnline = isOnline;
        }
    }

    /** All paths from a host to a unit, whichever these are. */
    public static final class Way extends Thing {
        /** A step for each path, in the order of the ports. */
        public final List<Step> steps;

        private Way(int number, List<Step> steps) {
            super(number);
            this.steps = steps;
        }
    }

    /** How a unit is reached by hosts that reach it alike. */
    public static final class Reach extends Thing {
        /** The unit. */
        public final Unit unit;
        /** The paths. */
        public final Way way;
        /** The disk that each path leads to; null where there is none. */
        public final List<String> disks;

        private Reach(int number, Unit unit, Way way, List<String> disks) {
            super(number);
            this.unit = unit;
            this.way = way;
            this.disks = disks;
        }
    }

    /** A port of a host. */
    public static final class Port {
        /** Its name. */
        public final String wwn;
        /** The index of its adapter. */
        public final int adapter;
        /** What its adapter is. */
        public final Model model;
        /** Where it is plugged in; null where that has no name. */
        public final Switch at;
        /** Its state: "online". */
        public final String state;

        private final int port;

        private Port(ResultSet row, Model model, Switch at) throws SQLException {
            wwn = row.getString("wwn");
            adapter = row.getInt("adapter");
            port = row.getInt("port");
            state = row.getString("state");
            this.model = model;
            this.at = at;
        }
    }

    /** A host. */
    public static final class Host extends Thing {
        /** What it is called. */
        public final String name;
        /** Its hardware. */
        public final String platform;
        /** When it was recorded. */
        public final String recordedAt;
        /** By adapter and index. */
        public final List<Port> ports = new ArrayList<>();
        /** A reach for each unit. */
        public final List<Reach> reaches = new ArrayList<>();
        /** The units on which file systems are mounted, by mount point. */
        public final Map<String, Unit> mounts = new LinkedHashMap<>();

        private Host(int number, ResultSet row) throws SQLException {
            super(number);
            name = row.getString("host");
            platform = row.getString("platform");
            recordedAt = row.getString("recorded_at");
        }

        private int indexOf(int adapter, int port) {
            int index = 0;
            while (ports.get(index).adapter != adapter || ports.get(index).port != port) {
                index++;
            }
            return index;
        }
    }

    /** Things of a kind by what tells them apart. */
    private static final class Register<K, T> {
        private final Map<K, T> things = new LinkedHashMap<>();

        /** The thing of this key; the first time it is made, with the next number. */
        T get(K key, Function<Integer, T> maker) {
            T known = things.get(key);
            if (known == null) {
                known = maker.apply(things.size());
                things.put(key, known);
            }
            return known;
        }

        List<T> list() {
            return new ArrayList<>(things.values());
        }
    }

    private static final String HOSTS =
        "SELECT snapshot_id, host, platform, recorded_at FROM latest_snapshot ORDER BY host";
    private static final String PORTS = "SELECT snapshot_id, adapter, port, wwn, fabric, domain, state, model,"
        + " firmware, driver FROM latest_port ORDER BY snapshot_id, adapter, port";
    private static final String UNITS = "SELECT id, identity, vendor, product, size_bytes FROM unit";
    private static final String PATHS = "SELECT p.snapshot_id, p.unit_id, p.adapter, p.port, p.remote_wwn,"
        + " p.remote_node, p.remote_domain, p.remote_state, p.disk FROM latest_snapshot s"
        + " JOIN path p ON p.snapshot_id = s.snapshot_id"
        + " ORDER BY p.snapshot_id, p.unit_id, p.adapter, p.port, p.remote_wwn, p.lun";
    private static final String MOUNTS = "SELECT m.snapshot_id, m.mount_point, m.unit_id FROM latest_snapshot s"
        + " JOIN mount m ON m.snapshot_id = s.snapshot_id WHERE m.unit_id IS NOT NULL"
        + " ORDER BY m.snapshot_id, m.mount_point";

    /** The hosts, by name. */
    public final List<Host> hosts;
    /** The fabrics. */
    public final List<Fabric> fabrics;
    /** The switches. */
    public final List<Switch> switches;
    /** The arrays. */
    public final List<Array> arrays;
    /** Their ports. */
    public final List<ArrayPort> arrayPorts;
    /** The models of adapters. */
    public final List<Model> models;
    /** The units that any host has paths to. */
    public final List<Unit> units;
    /** The ways to units. */
    public final List<Way> ways;
    /** How units are reached. */
    public final List<Reach> reaches;
    /** How many paths there are. */
    public final long paths;

    private NetworkTopology(Reader reader) {
        hosts = new ArrayList<>(reader.hosts.values());
        fabrics = reader.fabrics.list();
        switches = reader.switches.list();
        arrays = reader.arrays.list();
        arrayPorts = reader.arrayPorts.list();
        models = reader.models.list();
        units = reader.units.list();
        ways = reader.ways.list();
        reaches = reader.reaches.list();
        paths = hosts.stream().flatMap(host -> host.reaches.stream()).mapToLong(reach -> reach.disks.size()).sum();
    }

    /**
     * {@return the network that the store knows}
     *
     * @param store open
     */
    public static NetworkTopology of(Store store) {
        Reader reader = new Reader();
        store.query(HOSTS, reader::addHost);
        store.query(PORTS, reader::addPort);
        store.query(UNITS, reader::addUnit);
        store.query(PATHS, reader::addPath);
        reader.endUnit();
        store.query(MOUNTS, reader::addMount);
        return new NetworkTopology(reader);
    }

    /** Makes the network of rows, which come host by host, unit by unit. */
    private static final class Reader {
        /** By snapshot. */
        private final Map<Long, Host> hosts = new LinkedHashMap<>();
        private final Register<String, Fabric> fabrics = new Register<>();
        private final Register<List<Object>, Switch> switches = new Register<>();
        private final Register<String, Array> arrays = new Register<>();
        private final Register<List<Object>, ArrayPort> arrayPorts = new Register<>();
        private final Register<List<String>, Model> models = new Register<>();
        private final Register<Long, Unit> units = new Register<>();
        private final Register<List<Object>, Way> ways = new Register<>();
        private final Register<List<Object>, Reach> reaches = new Register<>();
        private final Map<Long, Function<Integer, Unit>> knownUnits = new HashMap<>();

        // The unit that is being read.
        private Host host;
        private long unit;
        private final List<Step> steps = new ArrayList<>();
        private final List<String> disks = new ArrayList<>();

        private Void addHost(ResultSet row) throws SQLException {
            hosts.put(row.getLong("snapshot_id"), new Host(hosts.size(), row));
            return null;
        }

        private Void addPort(ResultSet row) throws SQLException {
            List<String> names = List.of(row.getString("model"), row.getString("firmware"), row.getString("driver"));
            hosts.get(row.getLong("snapshot_id")).ports.add(new Port(
                row, models.get(names, number -> new Model(number, names)),
                at(row.getString("fabric"), row.getInt("domain"))));
            return null;
        }

        private Switch at(String fabric, int domain) {
            return fabric.isEmpty() ? null : switches.get(List.of(fabric, domain), number -> new Switch(
                number, fabrics.get(fabric, added -> new Fabric(added, fabric)), domain));
        }

        private Void addUnit(ResultSet row) throws SQLException {
            String identity = row.getString("identity");
            String product = String.join(" ", texts(row.getString("vendor"), row.getString("product")));
            long bytes = row.getLong("size_bytes");
            Long size = row.wasNull() ? null : bytes;
            knownUnits.put(row.getLong("id"), number -> new Unit(number, identity, product, size));
            return null;
        }

        private static Collection<String> texts(String... told) {
            List<String> texts = new ArrayList<>(Arrays.asList(told));
            texts.removeIf(text -> text == null || text.isEmpty());
            return texts;
        }

        private Void addPath(ResultSet row) throws SQLException {
            Host of = hosts.get(row.getLong("snapshot_id"));
            long to = row.getLong("unit_id");
            if (of != host || to != unit) {
                endUnit();
                host = of;
                unit = to;
            }
            int index = of.indexOf(row.getInt("adapter"), row.getInt("port"));
            Port near = of.ports.get(index);
            Switch far = near.at == null ? null : at(near.at.fabric.name, row.getInt("remote_domain"));
            String node = row.getString("remote_node");
            String wwn = row.getString("remote_wwn");
            Array array = arrays.get(node, number -> new Array(number, node));
            steps.add(new Step(
                index, arrayPorts.get(Arrays.asList(wwn, array, far), number -> new ArrayPort(number, wwn, array, far)),
                near.state.equals(PortWords.ONLINE) && row.getString("remote_state").equals(PortWords.ONLINE)));
            disks.add(row.getString("disk"));
            return null;
        }

        /** Has the host reach the unit as the steps say. */
        private void endUnit() {
            if (steps.isEmpty()) {
                return;
            }
            Unit reached = units.get(unit, knownUnits.get(unit));
            List<Object> key = new ArrayList<>();
            for (Step step : steps) {
                key.addAll(List.of(step.port, step.arrayPort.number, step.isOnline));
                step.arrayPort.array.name(reached.product);
            }
            Way way = ways.get(key, number -> new Way(number, List.copyOf(steps)));
            List<String> led = new ArrayList<>(disks);
            host.reaches.add(reaches.get(List.of(reached, way, led), number -> new Reach(number, reached, way, led)));
            steps.clear();
            disks.clear();
        }

        private Void addMount(ResultSet row) throws SQLException {
            long on = row.getLong("unit_id");
            hosts.get(row.getLong("snapshot_id")).mounts.put(
                row.getString("mount_point"), units.get(on, knownUnits.get(on)));
            return null;
        }
    }
}
