package com.kelvo.tarn.cli.san;

import java.util.Collections;
import java.util.List;
import java.util.Locale;
import java.util.stream.Collectors;
import java.util.stream.IntStream;

/** The tables whose rows are each of one snapshot, with their other columns. */
public enum HostTable {
    /** The host bus adapters. */
    ADAPTER(0, "adapter", "model", "firmware", "driver", "node_wwn"),
    /** Their ports. */
    PORT(0, "adapter", "port", "wwn", "fabric", "fc_address", "domain", "state", "speed"),
    /** The target mappings; there are many between the same two ports. */
    PATH(7, "adapter", "port", "remote_wwn", "remote_node", "remote_fc_address", "remote_domain", "remote_state",
         "unit_id", "lun", "disk"),
    /** The file systems that tell their sizes. */
    MOUNT(0, "mount_point", "disk", "unit_id", "total_bytes", "available_bytes"),
    /** What the check of the host alone finds. */
    FINDING(0, "severity", "code", "subject"),
    /** How each unit is reached over online paths; most are reached alike. */
    REACH(10, "paths", "adapters", "fabrics", "switches", "array_ports", "one_fabric", "one_switch", "second_switch",
          "one_array_port", "nodes", "unit_id", "size_bytes"),
    /** The array ports that are seen, by fabric. */
    SIGHT(0, "fabric", "remote_wwn", "remote_node", "remote_fc_address", "remote_domain", "remote_state", "initiators",
          "units");

    /** So many of its columns, the first, are the same in many rows of a host. */
    final int alike;
    /** Where a row says which unit it is about: the unit's identity, of which the store makes the unit's number. */
    final int unit;
    /** The statement that adds a row to the snapshot that its first parameter names. */
    final String insertion;
    /** The statement that adds several which begin alike: the snapshot, that beginning, each row's own; or null. */
    final String together;

    /** How many rows {@link #together} adds. */
    static final int TOGETHER = 16;

    HostTable(int alike, String... columns) {
        this.alike = alike;
        List<String> own = List.of(columns).subList(alike, columns.length);
        unit = List.of(columns).indexOf("unit_id");
        String values = "INSERT INTO " + name().toLowerCase(Locale.ROOT) + " (snapshot_id, "
            + String.join(", ", columns) + ") ";
        insertion = values + "VALUES (?" + ", ?".repeat(columns.length) + ")";
        String row = own.stream().map(HostTable::mark).collect(Collectors.joining(", ", "(", ")"));
        together = alike == 0 ? null : values + "SELECT e.*, own.* FROM (SELECT ?"
            + IntStream.rangeClosed(1, alike).mapToObj(column -> ", ? AS c" + column).collect(Collectors.joining())
            + ") e CROSS JOIN (VALUES " + String.join(", ", Collections.nCopies(TOGETHER, row)) + ") own";
    }

    /** What is null in all rows has no type but one that is told. */
    private static String mark(String column) {
        return column.endsWith("_bytes") ? "CAST(? AS BIGINT)" : "?";
    }
}
