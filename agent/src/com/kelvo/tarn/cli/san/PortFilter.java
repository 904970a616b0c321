package com.kelvo.tarn.cli.san;

/** Which ports of hosts are asked about. Each is a pattern, in which * and ? stand for other text; null leaves all. */
public final class PortFilter {
    /** The host's name. */
    public String host;
    /** The name of the fabric. */
    public String fabric;
    /** The adapter's model. */
    public String model;
    /** The adapter's firmware. */
    public String firmware;

    /** What holds of a latest_snapshot s. */
    Conditions ofHost() {
        return new Conditions().like("s.host", host);
    }

    /** What holds of a port p with its adapter a, whatever the host is. */
    Conditions ofPort() {
        return new Conditions().likeName("p.fabric", fabric).like("a.model", model).like("a.firmware", firmware);
    }

    /** What holds of a latest_snapshot s that has such a port, for which one more thing holds. */
    Conditions ofHostWithPort(String more) {
        Conditions port = ofPort();
        return port.isEmpty() ? ofHost()
            : ofHost().andWhere("EXISTS (SELECT 1 FROM port p JOIN adapter a ON a.snapshot_id = p.snapshot_id"
                                + " AND a.adapter = p.adapter WHERE p.snapshot_id = s.snapshot_id AND " + more
                                + " AND ", port, ")");
    }
}
