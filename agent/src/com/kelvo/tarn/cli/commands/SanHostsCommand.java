package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.san.Store;
import java.util.List;
import java.util.Map;
import picocli.CommandLine.Command;

/** {@code san hosts}. */
@Command(name = "hosts", description = "The hosts of the storage network: when they were recorded, and how they are "
             + "connected.")
public final class SanHostsCommand extends StoreInquiryCommand {
    private static final String HOSTS = "SELECT s.host, s.platform, s.recorded_at,"
        + " (SELECT COUNT(*) FROM port p WHERE p.snapshot_id = s.snapshot_id) AS ports,"
        + " (SELECT COUNT(*) FROM reach r WHERE r.snapshot_id = s.snapshot_id) AS units,"
        + " (SELECT COUNT(*) FROM path p WHERE p.snapshot_id = s.snapshot_id) AS paths,"
        + " (SELECT COUNT(*) FROM finding f WHERE f.snapshot_id = s.snapshot_id) AS findings"
        + " FROM latest_snapshot s ORDER BY s.host";

    @Override
    Answer ask(Store store) {
        List<Map<String, Object>> hosts = store.query(HOSTS, row -> Json.object(
            "host", row.getString("host"), "platform", row.getString("platform"),
            "recordedAt", row.getString("recorded_at"), "ports", row.getLong("ports"),
            "units", row.getLong("units"), "paths", row.getLong("paths"), "findings", row.getLong("findings")));
        return Answer.listing("host", null, () -> hosts, null, rows -> new Table<>(rows)
            .text("Host", row -> row.get("host")).text("Platform", row -> row.get("platform"))
            .text("Recorded", row -> row.get("recordedAt")).number("Ports", row -> row.get("ports"))
            .number("Units", row -> row.get("units")).number("Paths", row -> row.get("paths"))
            .number("Findings", row -> row.get("findings")));
    }
}
