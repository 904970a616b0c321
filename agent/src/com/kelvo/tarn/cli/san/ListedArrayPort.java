package com.kelvo.tarn.cli.san;

import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.List;

/** A remote port through which units are reached, as all hosts see it together. */
public final class ListedArrayPort {
    private static final String PORTS = "SELECT g.fabric, g.remote_wwn,"
        + " MAX(CASE WHEN g.units > 0 THEN g.remote_node END) AS node,"
        + " MAX(CASE WHEN g.units > 0 THEN g.remote_domain END) AS domain,"
        + " MAX(CASE WHEN g.units > 0 THEN g.remote_fc_address END) AS fc_address, COUNT(*) AS hosts,"
        + " SUM(CASE WHEN g.remote_state = 'online' THEN 1 ELSE 0 END) AS online, SUM(g.initiators) AS initiators"
        + " FROM latest_snapshot s JOIN sight g ON g.snapshot_id = s.snapshot_id"
        + " GROUP BY g.fabric, g.remote_wwn HAVING ";

    /** Its world-wide name. */
    public final String wwn;
    /** The name of its node, an array or a controller of one. */
    public final String node;
    /** Its name; empty when it is not told. */
    public final String fabric;
    /** The domain; 0 for none. */
    public final int domain;
    /** Six hexadecimal digits; empty when it is not told. */
    public final String fcAddress;
    /** How many have discovered it. */
    public final long hosts;
    /** How many of them see it online. */
    public final long hostsOnline;
    /** How many of their ports have discovered it. */
    public final long initiators;

    private ListedArrayPort(ResultSet row) throws SQLException {
        wwn = row.getString("remote_wwn");
        node = row.getString("node");
        fabric = row.getString("fabric");
        domain = row.getInt("domain");
        fcAddress = row.getString("fc_address");
        hosts = row.getLong("hosts");
        hostsOnline = row.getLong("online");
        initiators = row.getLong("initiators");
    }

    /**
     * {@return the array ports that hosts with such a port see in its fabric, by fabric and name}
     *
     * @param store what is asked
     * @param filter which ports of hosts
     * @param array only those of a node of such a name, with * and ?
     * @param state only those that such a host sees in such a state; null for all
     */
    public static List<ListedArrayPort> of(Store store, PortFilter filter, String array, String state) {
        Conditions seen = filter.ofHostWithPort("p.fabric = g.fabric").likeName("g.remote_node", array)
            .like("g.remote_state", state);
        Conditions wanted = new Conditions().and("SUM(g.units) > 0")
            .andWhere("MAX(CASE WHEN ", seen, " THEN 1 ELSE 0 END) = 1");
        return store.query(PORTS + wanted.sql() + " ORDER BY g.fabric, g.remote_wwn", ListedArrayPort::new,
                           wanted.values());
    }
}
