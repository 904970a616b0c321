package com.kelvo.tarn.cli.san;

import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** A logical unit of the network, with what all its hosts come to. */
public final class ListedUnit {
    /** Its identity; its node and LUN, when that is all that is known of it. */
    public final String unit;
    /** Whether it is known by its address only. */
    public final boolean byAddress;
    /** As the unit tells it; null when it does not. */
    public final String vendor;
    /** As the unit tells it; null when it does not. */
    public final String product;
    /** Null when it is not told. */
    public final Long sizeBytes;
    /** How many have paths to it. */
    public final long hosts;
    /** The fewest paths, online at both ends, that one of them has. */
    public final long pathsMin;
    /** The names of the nodes that present it. */
    public final List<String> arrays = new ArrayList<>();

    private ListedUnit(ResultSet row) throws SQLException {
        unit = row.getString("identity");
        byAddress = row.getBoolean("by_address");
        vendor = row.getString("vendor");
        product = row.getString("product");
        sizeBytes = Store.number(row, "size_bytes");
        hosts = row.getLong("hosts");
        pathsMin = row.getLong("paths_min");
    }

    /**
     * {@return the units that are reached through such a port, by identity}
     *
     * @param store what is asked
     * @param filter which ports
     * @param array only those presented by a node of such a name, with * and ?; null for all
     * @param isShared only those that several hosts reach
     * @param isSingle only those that one of the hosts which are asked about has less than two paths to
     */
    public static List<ListedUnit> of(Store store, PortFilter filter, String array, boolean isShared,
                                      boolean isSingle) {
        Conditions reached = filter.ofHost();
        if (!filter.ofPort().isEmpty()) {
            reached.andWhere("(r.snapshot_id, r.unit_id) IN (SELECT w.snapshot_id, w.unit_id FROM latest_snapshot l"
                             + " JOIN path w ON w.snapshot_id = l.snapshot_id JOIN port p ON p.snapshot_id ="
                             + " w.snapshot_id AND p.adapter = w.adapter AND p.port = w.port JOIN adapter a ON"
                             + " a.snapshot_id = p.snapshot_id AND a.adapter = p.adapter WHERE ", filter.ofPort(), ")");
        }
        if (isSingle) {
            reached.and("r.paths < 2");
        }
        Conditions wanted =
            new Conditions().andWhere("MAX(CASE WHEN ", reached, " THEN 1 ELSE 0 END) = 1");
        if (isShared) {
            wanted.and("COUNT(*) > 1");
        }
        if (array != null) {
            wanted.andWhere("r.unit_id IN (SELECT unit_id FROM unit_node WHERE ",
                            new Conditions().likeName("node", array), ")");
        }
        String units = "WITH wanted AS (SELECT r.unit_id, COUNT(*) AS hosts, MIN(r.paths) AS paths_min"
            + " FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id GROUP BY r.unit_id HAVING "
            + wanted.sql() + ") SELECT u.identity, u.by_address, u.vendor, u.product, u.size_bytes, w.hosts,"
            + " w.paths_min, n.node FROM wanted w JOIN unit u ON u.id = w.unit_id"
            + " LEFT JOIN unit_node n ON n.unit_id = u.id ORDER BY u.identity, n.node";
        Map<String, ListedUnit> found = new LinkedHashMap<>();
        store.query(units, row -> {
            ListedUnit unit = found.get(row.getString("identity"));
            if (unit == null) {
                unit = new ListedUnit(row);
                found.put(unit.unit, unit);
            }
            String node = row.getString("node");
            return node != null && unit.arrays.add(node);
        }, wanted.values());
        return new ArrayList<>(found.values());
    }
}
