package com.kelvo.tarn.cli.san;

import java.sql.ResultSet;
import java.sql.SQLException;
import java.time.Instant;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.TreeMap;
import java.util.TreeSet;
import java.util.stream.Collectors;

/** What changed in the network between two recordings of each host: its latest and an earlier one. */
public final class NetworkDiff {
    /** A thing that changed, with the hosts that see it so. */
    public static final class Thing {
        /** A host, a model, a WWN or the identity of a unit. */
        public final String name;
        /** In order. */
        public final TreeSet<String> hosts = new TreeSet<>();

        private Thing(String name) {
            this.name = name;
        }
    }

    /** What became of one thing or more, alike. */
    public static final class Change {
        /** "host", "adapter", "port", "array port" or "unit". */
        public final String kind;
        /** "appeared", "vanished" or "changed". */
        public final String change;
        /** What of it changed; a unit appears and vanishes with its "paths"; else null. */
        public final String property;
        /** Null where it was not there. */
        public final Object was;
        /** Null where it is not there. */
        public final Object is;
        /** In order. */
        public final List<Thing> things = new ArrayList<>();

        private Change(Event event) {
            kind = event.kind.name;
            change = event.change;
            property = event.property;
            was = event.was;
            is = event.is;
        }

        /** {@return the names of all hosts that see it} */
        public TreeSet<String> hosts() {
            TreeSet<String> hosts = new TreeSet<>();
            things.forEach(thing -> hosts.addAll(thing.hosts));
            return hosts;
        }
    }

    /** A column of which a change is told. */
    private enum Property {
        MODEL, FIRMWARE, DRIVER, STATE, PATHS(true), FABRIC, DOMAIN(true), SPEED(true), SIZE_BYTES(true);

        private final boolean isNumber;

        Property() {
            this(false);
        }

        Property(boolean isNumber) {
            this.isNumber = isNumber;
        }

        String named() {
            return this == SIZE_BYTES ? "sizeBytes" : name().toLowerCase(Locale.ROOT);
        }

        Object read(ResultSet row) throws SQLException {
            return isNumber ? Store.number(row, name()) : (Object) row.getString(name());
        }

        /** That it is told at one of the two times only is no change of it. */
        static boolean isTold(Object value) {
            return value != null && !value.equals("") && !value.equals(0L);
        }

        boolean differs(Object was, Object is) {
            return !Objects.equals(was, is) && (this == STATE || this == PATHS || isTold(was) && isTold(is));
        }
    }

    /** What can change, in the order in which it is told. */
    private enum Kind {
        HOST("host", null, null, null, null, null),
        ARRAY_PORT("array port", "sight", "t.remote_wwn",
                   "t.remote_state AS state, t.fabric, t.remote_domain AS domain,"
                   + " CASE WHEN t.units > 0 THEN 1 ELSE 0 END AS weight", "d.thing AS name", "",
                   Property.STATE, Property.FABRIC, Property.DOMAIN),
        ADAPTER("adapter", "adapter", "CASE WHEN t.node_wwn = '' THEN 'adapter ' || t.adapter ELSE t.node_wwn END",
                "t.model, t.firmware, t.driver, 0 AS weight", "d.model AS name", "",
                Property.MODEL, Property.FIRMWARE, Property.DRIVER),
        PORT("port", "port", "CASE WHEN t.wwn = '' THEN 'adapter ' || t.adapter || ' port ' || t.port ELSE t.wwn END",
             "t.state, t.fabric, t.domain, t.speed, 1 AS weight", "d.thing AS name", "",
             Property.STATE, Property.FABRIC, Property.DOMAIN, Property.SPEED),
        UNIT("unit", "reach", "t.unit_id", "t.paths, t.size_bytes, 1 AS weight", "u.identity AS name",
             " JOIN unit u ON u.id = d.thing", Property.PATHS, Property.SIZE_BYTES);

        private final String name;
        private final String table;
        private final String thing;
        private final String columns;
        private final String shown;
        private final String join;
        private final List<Property> properties;

        Kind(String name, String table, String thing, String columns, String shown, String join,
             Property... properties) {
            this.name = name;
            this.table = table;
            this.thing = thing;
            this.columns = columns;
            this.shown = shown;
            this.join = join;
            this.properties = Arrays.asList(properties);
        }

        /** The rows that only one of the two recordings of a host has. */
        String query(String pairs) {
            return "WITH pair AS (" + pairs + "), now_row AS (" + rows("now_id") + "), was_row AS (" + rows("was_id")
                + ") SELECT d.*, " + shown + " FROM (SELECT 1 AS is_now, n.* FROM"
                + " (SELECT * FROM now_row EXCEPT SELECT * FROM was_row) n UNION ALL SELECT 0 AS is_now, w.* FROM"
                + " (SELECT * FROM was_row EXCEPT SELECT * FROM now_row) w) d" + join;
        }

        private String rows(String snapshot) {
            return "SELECT p.host, " + thing + " AS thing, " + columns + " FROM pair p JOIN " + table
                + " t ON t.snapshot_id = p." + snapshot + " WHERE p.was_id IS NOT NULL";
        }
    }

    /** A row that is not in both recordings. */
    private static final class Row {
        private final boolean isNow;
        private final String host;
        private final String thing;
        private final String name;
        /** Whether it counts that the thing appears or vanishes. */
        private final boolean counts;
        private final Map<Property, Object> values = new TreeMap<>();

        Row(Kind kind, ResultSet row) throws SQLException {
            isNow = row.getInt("is_now") == 1;
            host = row.getString("host");
            thing = row.getString("thing");
            name = row.getString("name");
            counts = row.getInt("weight") == 1;
            for (Property property : kind.properties) {
                values.put(property, property.read(row));
            }
        }
    }

    /** What one host tells of one thing. */
    private static final class Event {
        private final Kind kind;
        private final String change;
        private final String property;
        private final Object was;
        private final Object is;

        Event(Kind kind, String change, Property property, Object was, Object is) {
            this.kind = kind;
            this.change = change;
            this.property = property == null ? null : property.named();
            this.was = was;
            this.is = is;
        }

        List<Object> key(Object more) {
            return Arrays.asList(kind, change, property, was, is, more);
        }
    }

    /** What all hosts tell alike of one thing. */
    private static final class Told {
        private final Event event;
        private final Thing thing;

        Told(Event event, Thing thing) {
            this.event = event;
            this.thing = thing;
        }

        /** What is told at once: ports, and units whose paths changed, alike; else what is one cause for hosts. */
        List<Object> group() {
            boolean isOfManyHosts = event.kind == Kind.ARRAY_PORT || event.kind == Kind.ADAPTER
                || "sizeBytes".equals(event.property);
            return event.key(isOfManyHosts ? thing.name
                : event.kind == Kind.UNIT && !event.change.equals("changed") ? thing.hosts : null);
        }
    }

    /** From when on, in UTC; null for what came since the recording before. */
    public final String since;
    /** How many hosts could be compared. */
    public int compared;
    /** Those that have no recording after that time. */
    public final List<String> unheard = new ArrayList<>();
    /** By kind; what most hosts see first. */
    public final List<Change> changes;

    private final transient Map<List<Object>, Told> told = new LinkedHashMap<>();

    private NetworkDiff(Store store, Instant since) {
        this.since = since == null ? null : since.toString();
        Object[] values = since == null ? new Object[0] : new Object[] {this.since};
        String pairs = "SELECT h.name AS host, s.recorded_at, s.id AS now_id, (SELECT o.id FROM snapshot o WHERE"
            + " o.host_id = s.host_id AND o.recorded_at " + (since == null ? "< s.recorded_at" : "<= ?")
            + " ORDER BY o.recorded_at DESC LIMIT 1) AS was_id"
            + " FROM snapshot s JOIN host h ON h.id = s.host_id WHERE s.is_latest";
        store.query(pairs + " ORDER BY h.name", row -> add(row.getString("host"), row.getLong("now_id"),
                                                           Store.number(row, "was_id")), values);
        for (Kind kind : Kind.values()) {
            if (kind != Kind.HOST) {
                compare(kind, store.query(kind.query(pairs), row -> new Row(kind, row), values));
            }
        }
        changes = grouped();
    }

    /**
     * {@return what changed}
     *
     * @param store what is asked
     * @param since a host is compared with its latest recording of then or before; null: with the one before its latest
     */
    public static NetworkDiff of(Store store, Instant since) {
        return new NetworkDiff(store, since);
    }

    private boolean add(String host, long now, Long was) {
        if (was == null) {
            tell(new Event(Kind.HOST, "appeared", null, null, null), host, host);
        } else if (was == now) {
            unheard.add(host);
        } else {
            compared++;
        }
        return true;
    }

    private void compare(Kind kind, List<Row> rows) {
        Map<List<String>, List<Row>> before = new HashMap<>();
        rows.stream().filter(row -> !row.isNow)
            .forEach(row -> before.computeIfAbsent(List.of(row.host, row.thing), key -> new ArrayList<>()).add(row));
        for (Row now : rows) {
            List<Row> same = now.isNow ? before.getOrDefault(List.of(now.host, now.thing), List.of()) : null;
            if (same != null && !same.isEmpty()) {
                compare(kind, same.remove(same.size() - 1), now);
            } else if (same != null && now.counts) {
                tell(event(kind, "appeared", null, now), now.name, now.host);
            }
        }
        before.values().forEach(left -> left.stream().filter(row -> row.counts)
            .forEach(row -> tell(event(kind, "vanished", row, null), row.name, row.host)));
    }

    private void compare(Kind kind, Row was, Row now) {
        for (Property property : kind.properties) {
            Object before = was.values.get(property);
            Object after = now.values.get(property);
            if (property.differs(before, after) && (kind != Kind.ARRAY_PORT || was.counts || now.counts)) {
                tell(new Event(kind, "changed", property, before, after), now.name, now.host);
            }
        }
    }

    private static Event event(Kind kind, String change, Row was, Row is) {
        return kind != Kind.UNIT ? new Event(kind, change, null, null, null)
            : new Event(kind, change, Property.PATHS, was == null ? null : was.values.get(Property.PATHS),
                        is == null ? null : is.values.get(Property.PATHS));
    }

    private void tell(Event event, String name, String host) {
        told.computeIfAbsent(event.key(name), key -> new Told(event, new Thing(name))).thing.hosts.add(host);
    }

    private List<Change> grouped() {
        Map<List<Object>, Change> groups = new HashMap<>();
        told.values().stream().sorted(Comparator.comparing(each -> each.thing.name)).forEach(
            each -> groups.computeIfAbsent(each.group(), key -> new Change(each.event)).things.add(each.thing));
        Map<String, Integer> order = Arrays.stream(Kind.values()).collect(Collectors.toMap(kind -> kind.name,
                                                                                           Kind::ordinal));
        return groups.values().stream()
            .sorted(Comparator.comparing((Change change) -> order.get(change.kind))
                        .thenComparing(change -> -change.hosts().size())
                        .thenComparing(change -> change.things.get(0).name)
                        .thenComparing(change -> change.change + change.property + change.was + change.is))
            .collect(Collectors.toList());
    }
}
