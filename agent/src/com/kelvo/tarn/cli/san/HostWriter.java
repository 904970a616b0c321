package com.kelvo.tarn.cli.san;

import java.sql.Connection;
import java.sql.PreparedStatement;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.time.Instant;
import java.time.temporal.ChronoUnit;
import java.util.ArrayList;
import java.util.Collections;
import java.util.EnumMap;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/** Stores hosts, one after the other, each in a transaction of its own. */
final class HostWriter implements AutoCloseable {
    private static final int UNITS_KEPT = 10_000;
    /** How many units are asked for in one query. */
    private static final int UNITS_ASKED = 64;

    private static final String SNAPSHOTS = "SELECT recorded_at FROM snapshot WHERE host_id = ?"
        + " ORDER BY recorded_at DESC";
    private static final String NEWER = "SELECT COUNT(*) FROM snapshot s JOIN host h ON h.id = s.host_id"
        + " WHERE h.name = ? AND s.recorded_at > ?";
    private static final String TOO_MANY = "SELECT host_id FROM snapshot GROUP BY host_id HAVING COUNT(*) > ?";

    /** A unit as it is in the store. */
    private static final class Stored {
        private final long id;
        private final HostFacts.Unit unit;

        private Stored(long id, HostFacts.Unit unit) {
            this.id = id;
            this.unit = unit;
        }

        /** Whether there is nothing to learn about it from another host. */
        private boolean knows(HostFacts.Unit told) {
            return knows(unit.vendor, told.vendor) && knows(unit.product, told.product)
                && knows(unit.sizeBytes, told.sizeBytes);
        }

        private static boolean knows(Object stored, Object told) {
            return told == null || told.equals(stored);
        }
    }

    private final Store store;
    private final int keep;
    private final Map<String, PreparedStatement> statements = new HashMap<>();
    /** By identity, the last that were used; what a transaction has added is here once that is whole. */
    private final Map<String, Stored> units = new LinkedHashMap<>(16, 0.75f, true) {
        private static final long serialVersionUID = 1;

        @Override
        protected boolean removeEldestEntry(Map.Entry<String, Stored> eldest) {
            return size() > UNITS_KEPT;
        }
    };

    /** Writes through a connection that it has for itself; of each host so many snapshots are kept, or all for 0. */
    HostWriter(Store store, int keep) {
        this.store = store;
        this.keep = keep;
    }

    /** Whether a recording of that digest is in the store. */
    boolean has(String digest) {
        return store.work(connection -> has(connection, digest));
    }

    private boolean has(Connection connection, String digest) throws SQLException {
        try (ResultSet rows = bound(connection, "SELECT id FROM snapshot WHERE digest = ?", digest).executeQuery()) {
            return rows.next();
        }
    }

    /** Whether earlier recordings of a host are removed once there are enough. */
    boolean prunes() {
        return keep > 0;
    }

    /** Whether there are: one of that host and time would not be kept. */
    boolean hasEnoughLater(String host, Instant recordedAt) {
        return store.work(connection -> number(connection, NEWER, host, stored(recordedAt))) >= keep;
    }

    /**
     * Stores a host. Answers whether that changed anything: the same recording, and one that is older than all that are
     * kept, does not.
     *
     * @throws IllegalArgumentException when another recording of that host and time is there
     */
    boolean write(HostFacts facts, Instant recordedAt, String digest) {
        Map<String, Stored> learned = new TreeMap<>();
        boolean isDone = false;
        try {
            boolean added = store.transaction(
                connection -> add(connection, facts, stored(recordedAt), digest, learned));
            isDone = true;
            units.putAll(learned);
            return added;
        } finally {
            if (!isDone) {
                forgetRows();
            }
        }
    }

    /** Rows of a host that failed before they were written must not go with the next one's. */
    private void forgetRows() {
        for (PreparedStatement each : statements.values()) {
            try {
                each.clearBatch();
            } catch (SQLException gone) {
                // what failed before tells more, and there is no next host
            }
        }
    }

    /** Removes what is not to be kept of any host, each in a transaction of its own. */
    void prune() {
        if (prunes()) {
            List<Long> hosts = store.query(TOO_MANY, row -> row.getLong(1), keep);
            for (long host : hosts) {
                store.transaction(connection -> {
                    // As who adds a recording of it does first, so that neither has what the other waits for.
                    execute(connection, "UPDATE host SET platform = platform WHERE id = ?", host);
                    return prune(connection, host);
                });
            }
        }
    }

    private int prune(Connection connection, long host) throws SQLException {
        return execute(connection, "DELETE FROM snapshot WHERE host_id = ? AND recorded_at < (SELECT MIN(recorded_at)"
                       + " FROM (SELECT recorded_at FROM snapshot WHERE host_id = ? ORDER BY recorded_at DESC LIMIT ?)"
                       + " AS kept)",
                       host, host, keep);
    }

    private static String stored(Instant time) {
        return time.truncatedTo(ChronoUnit.SECONDS).toString();
    }

    private boolean add(Connection connection, HostFacts facts, String recordedAt, String digest,
                        Map<String, Stored> learned) throws SQLException {
        long host = number(connection, "INSERT INTO host (name, platform) VALUES (?, ?) ON CONFLICT (name)"
                           + " DO UPDATE SET name = excluded.name RETURNING id", facts.host, facts.platform);
        if (has(connection, digest)) { // since it was asked for: from here on nobody else adds recordings of this host
            return false;
        }
        int newer = 0;
        boolean hasOlder = false;
        try (ResultSet rows = bound(connection, SNAPSHOTS, host).executeQuery()) {
            while (!hasOlder && rows.next()) {
                if (rows.getString(1).compareTo(recordedAt) < 0) {
                    hasOlder = true;
                } else if (!rows.getString(1).equals(recordedAt)) {
                    newer++;
                } else {
                    throw new IllegalArgumentException(
                        "another recording of " + facts.host + " at " + recordedAt + " is in the store");
                }
            }
        }
        if (prunes() && newer >= keep) {
            return false;
        }
        if (newer == 0 && hasOlder) {
            execute(connection, "UPDATE snapshot SET is_latest = FALSE WHERE host_id = ? AND is_latest", host);
            execute(connection, "UPDATE host SET platform = ? WHERE id = ?", facts.platform, host);
        }
        long snapshot = number(connection, "INSERT INTO snapshot (host_id, recorded_at, loaded_at, digest, is_latest)"
                               + " VALUES (?, ?, ?, ?, ?) RETURNING id", host, recordedAt,
                               Instant.now().truncatedTo(ChronoUnit.SECONDS).toString(), digest, newer == 0);
        learn(connection, facts, learned);
        for (HostTable table : HostTable.values()) {
            addRows(connection, table, snapshot, facts.rows(table), learned);
        }
        if (prunes()) {
            prune(connection, host);
        }
        return true;
    }

    private void addRows(Connection connection, HostTable table, long snapshot,
                         Map<List<Object>, List<Object[]>> rows, Map<String, Stored> learned) throws SQLException {
        if (rows.isEmpty()) {
            return;
        }
        PreparedStatement single = prepared(connection, table.insertion);
        PreparedStatement together = table.together == null ? single : prepared(connection, table.together);
        int most = table.together == null ? 1 : HostTable.TOGETHER;
        for (Map.Entry<List<Object>, List<Object[]>> each : rows.entrySet()) {
            Object[] beginning = each.getKey().toArray();
            List<Object[]> left = each.getValue();
            while (!left.isEmpty()) {
                int count = left.size() < most ? 1 : most;
                PreparedStatement statement = count == 1 ? single : together;
                statement.setLong(1, snapshot);
                int parameter = bind(statement, 2, table, 0, beginning, learned);
                for (Object[] own : left.subList(0, count)) {
                    parameter = bind(statement, parameter, table, beginning.length, own, learned);
                }
                statement.addBatch();
                left = left.subList(count, left.size());
            }
        }
        together.executeBatch();
        single.executeBatch();
    }

    /** Has parameters stand for values, whose columns begin with that one; answers the next parameter. */
    private int bind(PreparedStatement statement, int first, HostTable table, int column, Object[] values,
                     Map<String, Stored> learned) throws SQLException {
        int parameter = first;
        for (int i = 0; i < values.length; i++) {
            boolean isUnit = column + i == table.unit && values[i] != null;
            statement.setObject(parameter++, isUnit ? id((String) values[i], learned) : values[i]);
        }
        return parameter;
    }

    private long id(String identity, Map<String, Stored> learned) {
        Stored stored = learned.get(identity);
        return (stored == null ? units.get(identity) : stored).id;
    }

    /** Sees to it that all units are in the store, in the order of their names, which is every loader's. */
    private void learn(Connection connection, HostFacts facts, Map<String, Stored> learned) throws SQLException {
        TreeMap<String, HostFacts.Unit> asked = new TreeMap<>();
        facts.units.forEach((identity, unit) -> {
            Stored stored = units.get(identity);
            if (stored == null || !stored.knows(unit)) {
                asked.put(identity, unit);
            }
        });
        if (asked.isEmpty()) {
            return;
        }
        PreparedStatement insertion = prepared(
            connection, "INSERT INTO unit (identity, by_address, vendor, product, size_bytes) VALUES (?, ?, ?, ?, ?)"
            + " ON CONFLICT (identity) DO NOTHING");
        for (Map.Entry<String, HostFacts.Unit> each : asked.entrySet()) {
            HostFacts.Unit unit = each.getValue();
            Store.bind(insertion, each.getKey(), unit.byAddress, unit.vendor, unit.product, unit.sizeBytes);
            insertion.addBatch();
        }
        insertion.executeBatch();
        readUnits(connection, new ArrayList<>(asked.keySet()), learned);
        PreparedStatement update = prepared(
            connection, "UPDATE unit SET vendor = COALESCE(?, vendor), product = COALESCE(?, product),"
            + " size_bytes = COALESCE(?, size_bytes) WHERE id = ?");
        for (Map.Entry<String, HostFacts.Unit> each : asked.entrySet()) {
            HostFacts.Unit unit = each.getValue();
            Stored stored = learned.get(each.getKey());
            if (!stored.knows(unit)) {
                Store.bind(update, unit.vendor, unit.product, unit.sizeBytes, stored.id);
                update.addBatch();
                learned.put(each.getKey(), new Stored(stored.id, merged(stored.unit, unit)));
            }
        }
        update.executeBatch();
    }

    private static HostFacts.Unit merged(HostFacts.Unit stored, HostFacts.Unit told) {
        return new HostFacts.Unit(
            stored.byAddress, either(told.vendor, stored.vendor), either(told.product, stored.product),
            either(told.sizeBytes, stored.sizeBytes));
    }

    private static <T> T either(T first, T second) {
        return first != null ? first : second;
    }

    private void readUnits(Connection connection, List<String> identities, Map<String, Stored> found)
        throws SQLException {
        String query = "SELECT identity, id, by_address, vendor, product, size_bytes FROM unit WHERE identity IN (?"
            + String.join("", Collections.nCopies(UNITS_ASKED - 1, ", ?")) + ")";
        for (int from = 0; from < identities.size(); from += UNITS_ASKED) {
            Object[] asked = new Object[UNITS_ASKED];
            for (int i = 0; i < UNITS_ASKED; i++) {
                asked[i] = identities.get(Math.min(from + i, identities.size() - 1));
            }
            try (ResultSet rows = bound(connection, query, asked).executeQuery()) {
                while (rows.next()) {
                    found.put(rows.getString(1), new Stored(rows.getLong(2), new HostFacts.Unit(
                        rows.getBoolean(3), rows.getString(4), rows.getString(5),
                        Store.number(rows, "size_bytes"))));
                }
            }
        }
    }

    private PreparedStatement prepared(Connection connection, String sql) throws SQLException {
        PreparedStatement statement = statements.get(sql);
        if (statement == null) {
            statement = connection.prepareStatement(sql);
            statements.put(sql, statement);
        }
        return statement;
    }

    private PreparedStatement bound(Connection connection, String sql, Object... values) throws SQLException {
        PreparedStatement statement = prepared(connection, sql);
        Store.bind(statement, values);
        return statement;
    }

    private int execute(Connection connection, String sql, Object... values) throws SQLException {
        return bound(connection, sql, values).executeUpdate();
    }

    /** The number that the statement answers with. */
    private long number(Connection connection, String sql, Object... values) throws SQLException {
        try (ResultSet rows = bound(connection, sql, values).executeQuery()) {
            rows.next();
            return rows.getLong(1);
        }
    }

    @Override
    public void close() {
        store.close();
    }
}
