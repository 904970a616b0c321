package com.kelvo.tarn.cli.san;

import java.sql.ResultSet;
import java.sql.SQLException;
import java.time.Instant;
import java.util.List;

/** A host of the network, as it was recorded latest. */
public final class ListedHost {
    private static final String HOSTS = "SELECT s.host, s.platform, s.recorded_at,"
        + " (SELECT COUNT(*) FROM port p WHERE p.snapshot_id = s.snapshot_id) AS ports,"
        + " (SELECT COUNT(*) FROM port p WHERE p.snapshot_id = s.snapshot_id AND p.state = 'online') AS ports_online,"
        + " (SELECT COUNT(*) FROM reach r WHERE r.snapshot_id = s.snapshot_id) AS units,"
        + " (SELECT COALESCE(SUM(r.paths), 0) FROM reach r WHERE r.snapshot_id = s.snapshot_id) AS paths,"
        + " (SELECT COUNT(*) FROM finding f WHERE f.snapshot_id = s.snapshot_id) AS findings"
        + " FROM latest_snapshot s WHERE ";

    /** Its name. */
    public final String host;
    /** The machine's; empty when it is not told. */
    public final String platform;
    /** When, in UTC. */
    public final String recordedAt;
    /** Its ports. */
    public final long ports;
    /** Those that are online. */
    public final long portsOnline;
    /** The units that it has paths to. */
    public final long units;
    /** Its paths that are online at both ends. */
    public final long paths;
    /** What the check of the host alone finds. */
    public final long findings;

    private ListedHost(ResultSet row) throws SQLException {
        host = row.getString("host");
        platform = row.getString("platform");
        recordedAt = row.getString("recorded_at");
        ports = row.getLong("ports");
        portsOnline = row.getLong("ports_online");
        units = row.getLong("units");
        paths = row.getLong("paths");
        findings = row.getLong("findings");
    }

    /**
     * {@return the hosts that have such a port, by name}
     *
     * @param store what is asked
     * @param filter which ports
     * @param before only those recorded before; null for all
     */
    public static List<ListedHost> of(Store store, PortFilter filter, Instant before) {
        Conditions wanted = filter.ofHostWithPort("TRUE");
        if (before != null) {
            wanted.and("s.recorded_at < ?", before.toString());
        }
        return store.query(HOSTS + wanted.sql() + " ORDER BY s.host", ListedHost::new, wanted.values());
    }
}
