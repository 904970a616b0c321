-- The store of the storage network, for SQLite and PostgreSQL alike. ${id} is what gives a row its number.
-- Names that are not told are empty; what else is not known is null. Times are UTC, such as 2026-11-24T10:00:00Z.

CREATE TABLE tarn_store (version INTEGER NOT NULL);

CREATE TABLE host (
    id ${id},
    name TEXT NOT NULL UNIQUE,
    platform TEXT NOT NULL
);

-- One recording of a host. The digest is of the description's text.
CREATE TABLE snapshot (
    id ${id},
    host_id BIGINT NOT NULL REFERENCES host (id) ON DELETE CASCADE,
    recorded_at TEXT NOT NULL,
    loaded_at TEXT NOT NULL,
    digest TEXT NOT NULL,
    is_latest BOOLEAN NOT NULL,
    UNIQUE (host_id, recorded_at)
);
CREATE INDEX snapshot_digest ON snapshot (digest);

CREATE TABLE adapter (
    snapshot_id BIGINT NOT NULL REFERENCES snapshot (id) ON DELETE CASCADE,
    adapter INTEGER NOT NULL,
    model TEXT NOT NULL,
    firmware TEXT NOT NULL,
    driver TEXT NOT NULL,
    node_wwn TEXT NOT NULL,
    PRIMARY KEY (snapshot_id, adapter)
);

-- The domain is the first byte of the address: the switch's, within its fabric, or 0 for none. The speed is in bits a
-- second.
CREATE TABLE port (
    snapshot_id BIGINT NOT NULL REFERENCES snapshot (id) ON DELETE CASCADE,
    adapter INTEGER NOT NULL,
    port INTEGER NOT NULL,
    wwn TEXT NOT NULL,
    fabric TEXT NOT NULL,
    fc_address TEXT NOT NULL,
    domain INTEGER NOT NULL,
    state TEXT NOT NULL,
    speed BIGINT,
    PRIMARY KEY (snapshot_id, adapter, port)
);
CREATE INDEX port_wwn ON port (wwn);

-- What units are is the same for all hosts and times. One that is known by address only is called by its node and LUN.
CREATE TABLE unit (
    id ${id},
    identity TEXT NOT NULL UNIQUE,
    by_address BOOLEAN NOT NULL,
    vendor TEXT,
    product TEXT,
    size_bytes BIGINT
);

CREATE TABLE path (
    snapshot_id BIGINT NOT NULL REFERENCES snapshot (id) ON DELETE CASCADE,
    adapter INTEGER NOT NULL,
    port INTEGER NOT NULL,
    remote_wwn TEXT NOT NULL,
    remote_node TEXT NOT NULL,
    remote_fc_address TEXT NOT NULL,
    remote_domain INTEGER NOT NULL,
    remote_state TEXT NOT NULL,
    unit_id BIGINT NOT NULL REFERENCES unit (id),
    lun BIGINT NOT NULL,
    disk TEXT
);
CREATE INDEX path_snapshot ON path (snapshot_id);

CREATE TABLE mount (
    snapshot_id BIGINT NOT NULL REFERENCES snapshot (id) ON DELETE CASCADE,
    mount_point TEXT NOT NULL,
    disk TEXT,
    unit_id BIGINT REFERENCES unit (id),
    total_bytes BIGINT,
    available_bytes BIGINT
);
CREATE INDEX mount_snapshot ON mount (snapshot_id);

CREATE TABLE finding (
    snapshot_id BIGINT NOT NULL REFERENCES snapshot (id) ON DELETE CASCADE,
    severity TEXT NOT NULL,
    code TEXT NOT NULL,
    subject TEXT NOT NULL
);
CREATE INDEX finding_snapshot ON finding (snapshot_id);

-- The paths of a host to a unit, summed up: those that are online, each pair of ports once, and what they go through.
-- A switch counts at either end. What all of them share is named, a switch by its fabric and its domain ("FABRIC/1"),
-- and else null; they may share a switch at either end. The nodes, which are arrays or their controllers, are those
-- that present the unit to the host, over whichever paths, with blanks between them. The size is the host's own.
CREATE TABLE reach (
    snapshot_id BIGINT NOT NULL REFERENCES snapshot (id) ON DELETE CASCADE,
    unit_id BIGINT NOT NULL REFERENCES unit (id),
    paths INTEGER NOT NULL,
    adapters INTEGER NOT NULL,
    fabrics INTEGER NOT NULL,
    switches INTEGER NOT NULL,
    array_ports INTEGER NOT NULL,
    one_fabric TEXT,
    one_switch TEXT,
    second_switch TEXT,
    one_array_port TEXT,
    nodes TEXT NOT NULL,
    size_bytes BIGINT,
    PRIMARY KEY (snapshot_id, unit_id)
);
CREATE INDEX reach_unit ON reach (unit_id);

-- The remote ports that a host has discovered, summed up: by how many of its ports, and how many units it reaches
-- there.
CREATE TABLE sight (
    snapshot_id BIGINT NOT NULL REFERENCES snapshot (id) ON DELETE CASCADE,
    fabric TEXT NOT NULL,
    remote_wwn TEXT NOT NULL,
    remote_node TEXT NOT NULL,
    remote_fc_address TEXT NOT NULL,
    remote_domain INTEGER NOT NULL,
    remote_state TEXT NOT NULL,
    initiators INTEGER NOT NULL,
    units INTEGER NOT NULL,
    PRIMARY KEY (snapshot_id, fabric, remote_wwn)
);
CREATE INDEX sight_wwn ON sight (remote_wwn);

CREATE VIEW latest_snapshot AS
SELECT s.id AS snapshot_id, s.host_id, h.name AS host, h.platform, s.recorded_at, s.loaded_at
FROM snapshot s JOIN host h ON h.id = s.host_id
WHERE s.is_latest;

CREATE VIEW latest_port AS
SELECT s.host_id, s.host, p.snapshot_id, p.adapter, p.port, a.model, a.firmware, a.driver, p.wwn, p.fabric,
    p.fc_address, p.domain, p.state, p.speed
FROM latest_snapshot s
JOIN port p ON p.snapshot_id = s.snapshot_id
JOIN adapter a ON a.snapshot_id = p.snapshot_id AND a.adapter = p.adapter;

CREATE VIEW latest_path AS
SELECT s.host_id, s.host, p.snapshot_id, p.adapter, p.port, n.wwn, n.fabric, n.domain, n.state, p.remote_wwn,
    p.remote_node, p.remote_fc_address, p.remote_domain, p.remote_state, p.unit_id, u.identity, p.lun, p.disk,
    (n.state = 'online' AND p.remote_state = 'online') AS is_online
FROM latest_snapshot s
JOIN path p ON p.snapshot_id = s.snapshot_id
JOIN port n ON n.snapshot_id = p.snapshot_id AND n.adapter = p.adapter AND n.port = p.port
JOIN unit u ON u.id = p.unit_id;

-- The remote ports through which any host reaches units, as such hosts tell of them.
CREATE VIEW array_port AS
SELECT g.fabric, g.remote_wwn AS wwn, MAX(CASE WHEN g.units > 0 THEN g.remote_node END) AS node,
    MAX(CASE WHEN g.units > 0 THEN g.remote_fc_address END) AS fc_address,
    MAX(CASE WHEN g.units > 0 THEN g.remote_domain END) AS domain,
    COUNT(*) AS hosts, SUM(g.initiators) AS initiators
FROM latest_snapshot s JOIN sight g ON g.snapshot_id = s.snapshot_id
GROUP BY g.fabric, g.remote_wwn
HAVING SUM(g.units) > 0;

CREATE VIEW unit_redundancy AS
SELECT r.unit_id, s.host, r.paths, r.adapters, r.fabrics, r.switches, r.array_ports
FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id;

CREATE VIEW shared_unit AS
SELECT r.unit_id, u.identity, COUNT(*) AS hosts
FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id JOIN unit u ON u.id = r.unit_id
GROUP BY r.unit_id, u.identity
HAVING COUNT(*) > 1;

-- The nodes that present a unit to any host.
CREATE VIEW unit_node AS
WITH RECURSIVE split (unit_id, node, others) AS (
    SELECT r.unit_id, SUBSTR(r.nodes, 1, 16), SUBSTR(r.nodes, 18)
    FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id WHERE r.nodes <> ''
    UNION
    SELECT unit_id, SUBSTR(others, 1, 16), SUBSTR(others, 18) FROM split WHERE others <> ''
)
SELECT DISTINCT unit_id, node FROM split;

-- The ports that at least two hosts see online which share a unit of that node with this one, and which it does not see
-- on a fabric where it has a port online.
CREATE VIEW zoning_gap AS
WITH seen AS (
    SELECT r.unit_id, g.fabric, g.remote_wwn, g.remote_node, COUNT(*) AS hosts
    FROM latest_snapshot s
    JOIN reach r ON r.snapshot_id = s.snapshot_id
    JOIN unit_node n ON n.unit_id = r.unit_id
    JOIN sight g ON g.snapshot_id = r.snapshot_id AND g.remote_node = n.node
    WHERE g.fabric <> '' AND g.remote_state = 'online'
    GROUP BY r.unit_id, g.fabric, g.remote_wwn, g.remote_node
)
SELECT s.host, e.fabric, e.remote_wwn, e.remote_node, MAX(e.hosts) AS hosts
FROM seen e
JOIN reach r ON r.unit_id = e.unit_id
JOIN latest_snapshot s ON s.snapshot_id = r.snapshot_id
WHERE e.hosts >= 2
AND NOT EXISTS (
    SELECT 1 FROM sight g
    WHERE g.snapshot_id = r.snapshot_id AND g.fabric = e.fabric AND g.remote_wwn = e.remote_wwn)
AND EXISTS (
    SELECT 1 FROM port p WHERE p.snapshot_id = r.snapshot_id AND p.fabric = e.fabric AND p.state = 'online')
GROUP BY s.host, e.fabric, e.remote_wwn, e.remote_node;
