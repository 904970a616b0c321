package com.kelvo.tarn.cli.san;

import java.util.Collections;
import java.util.List;
import java.util.Locale;
import java.util.stream.Collectors;
import java.util.stream.IntStream;

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
          "second_switch", "one_array_port", "nodes", "size_bytes"),
    /** The array ports that are seen, by fabric. */
    SIGHT("fabric", "remote_wwn", "remote_node", "remote_fc_address", "remote_domain", "remote_state", "initiators",
          "units");

    /** Where a row says which unit it is about: the unit's identity, of which the store makes the unit's number. */
    final int unit;
    /** The statement that adds a row to the snapshot that its first parameter names. */
    final String insertion;

    /** How many paths {@link #PATHS_TOGETHER} adds. */
    static final int TOGETHER = 16;
    /** With how many columns a path begins that all between the same two ports have alike. */
    static final int ENDS = 7;
    /** The statement that adds paths between the same two ports: the snapshot, the ports, each path's own columns. */
    static final String PATHS_TOGETHER = PATH.insertion.replaceFirst("VALUES.*", "SELECT e.*, own.* FROM (SELECT ?"
        + IntStream.rangeClosed(1, ENDS).mapToObj(column -> ", ? AS c" + column).collect(Collectors.joining())
        + ") e CROSS JOIN (VALUES " + String.join(", ", Collections.nCopies(TOGETHER, "(?, ?, ?)")) + ") own");

    HostTable(String... columns) {
        unit = List.of(columns).indexOf("unit_id");
        insertion = "INSERT INTO " + name().toLowerCase(Locale.ROOT) + " (snapshot_id, " + String.join(", ", columns)
            + ") VALUES (?" + ", ?".repeat(columns.length) + ")";
    }
}
