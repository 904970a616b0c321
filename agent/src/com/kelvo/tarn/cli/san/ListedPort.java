package com.kelvo.tarn.cli.san;

import java.sql.ResultSet;
import java.sql.SQLException;
import java.util.List;

/** A port of a host, as it was recorded latest. */
public final class ListedPort {
    private static final String PORTS = "SELECT s.host, p.adapter, p.port, p.wwn, a.model, a.firmware, a.driver,"
        + " p.fabric, p.domain, p.fc_address, p.state, p.speed FROM latest_snapshot s"
        + " JOIN port p ON p.snapshot_id = s.snapshot_id"
        + " JOIN adapter a ON a.snapshot_id = p.snapshot_id AND a.adapter = p.adapter WHERE ";

    /** The host's name. */
    public final String host;
    /** The adapter's index. */
    public final int adapter;
    /** The port's. */
    public final int port;
    /** Empty when it is not told, as are the other texts. */
    public final String wwn;
    /** The adapter's model. */
    public final String model;
    /** Its version. */
    public final String firmware;
    /** Its version. */
    public final String driver;
    /** Its name. */
    public final String fabric;
    /** The domain; 0 for none. */
    public final int domain;
    /** Six hexadecimal digits. */
    public final String fcAddress;
    /** In words, such as "online". */
    public final String state;
    /** In bits a second; null when it is not told. */
    public final Long speed;

    private ListedPort(ResultSet row) throws SQLException {
        host = row.getString("host");
        adapter = row.getInt("adapter");
        port = row.getInt("port");
        wwn = row.getString("wwn");
        model = row.getString("model");
        firmware = row.getString("firmware");
        driver = row.getString("driver");
        fabric = row.getString("fabric");
        domain = row.getInt("domain");
        fcAddress = row.getString("fc_address");
        state = row.getString("state");
        speed = Store.number(row, "speed");
    }

    /**
     * {@return such ports, by host and place}
     *
     * @param store what is asked
     * @param filter which
     * @param state only those in such a state, with * and ?; null for all
     */
    public static List<ListedPort> of(Store store, PortFilter filter, String state) {
        Conditions wanted =
            filter.ofHost().andWhere("", filter.ofPort(), "").like("p.state", state);
        return store.query(PORTS + wanted.sql() + " ORDER BY s.host, p.adapter, p.port", ListedPort::new,
                           wanted.values());
    }
}
