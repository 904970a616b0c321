package com.kelvo.tarn.cli.san;

import java.util.List;
import java.util.Locale;

/** The tables whose rows are each of one snapshot, with their other columns. */
public enum HostTable {
    /** The host bus adapters. */
    ADAPTER("adapter", "model", "firmware", "driver", "node_wwn"),
    /** Their ports. */
    PORT("adapter", "port", "wwn", "fabric", "fc_address", "domain", "state", "speed"),
    /** The target mappings. */
    PATH("adapter", "port", "remote_wwn", "remote_node", "remote_fc_address", "remote_domain", "remote_state",
         "unit_id", "lun", "disk"),
    /** The file systems that tell their sizes. */
    MOUNT("mount_point", "disk", "unit_id", "total_bytes", "available_bytes"),
    /** What the check of the host alone finds. */
    FINDING("severity", "code", "subject"),
    /** How each unit is reached over online paths. */
    REACH("unit_id", "paths", "adapters", "fabrics", "switches", "array_ports", "one_fabric", "one_switch",
          "second_switch", "one_array_port", "size_bytes"),
    /** The array ports that are seen, by fabric. */
    SIGHT("fabric", "remote_wwn", "remote_node", "remote_fc_address", "remote_domain", "remote_state", "initiators",
          "units");

    /** Where a row says which unit it is about: the unit's identity, of which the store makes the unit's number. */
    final int unit;
    /** The statement that adds a row to the snapshot that its first parameter names. */
    final String insertion;

    HostTable(String... columns) {
        unit = List.of(columns).indexOf("unit_id");
        insertion = "INSERT INTO " + name().toLowerCase(Locale.ROOT) + " (snapshot_id, "
            + String.join(", ", columns) + ") VALUES (?" + ", ?".repeat(columns.length) + ")";
    }
}
