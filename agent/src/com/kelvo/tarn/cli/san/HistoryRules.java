package com.kelvo.tarn.cli.san;

import java.util.ArrayList;
import java.util.Collections;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** What the recordings of a host tell that were made one after the other. */
final class HistoryRules {
    private static final String PORTS = "SELECT h.name, s.recorded_at, p.wwn FROM host h"
        + " JOIN snapshot s ON s.host_id = h.id JOIN port p ON p.snapshot_id = s.id"
        + " WHERE p.wwn <> '' AND EXISTS (SELECT 1 FROM snapshot o WHERE o.host_id = h.id AND NOT o.is_latest)"
        + " ORDER BY s.host_id, s.recorded_at";

    /** With the latest recordings those before them, and of these the units that have more paths there. */
    private static final String LOSSES = "WITH recording AS (SELECT id, is_latest,"
        + " LAG(id) OVER (PARTITION BY host_id ORDER BY recorded_at) AS before_id,"
        + " LAG(recorded_at) OVER (PARTITION BY host_id ORDER BY recorded_at) AS before_at FROM snapshot)"
        + " SELECT s.id, s.before_at, u.identity, was.paths, now.paths AS left_over FROM recording s"
        + " JOIN reach was ON was.snapshot_id = s.before_id"
        + " JOIN unit u ON u.id = was.unit_id"
        + " LEFT JOIN reach now ON now.snapshot_id = s.id AND now.unit_id = was.unit_id"
        + " WHERE s.is_latest AND (now.paths IS NULL OR now.paths < was.paths) ORDER BY u.identity";

    /** The named ports of a host at one time. */
    private static final class Recording {
        private final String recordedAt;
        private final Set<String> ports = new HashSet<>();

        private Recording(String recordedAt) {
            this.recordedAt = recordedAt;
        }

        private boolean isOfAnother(Recording other) {
            return Collections.disjoint(ports, other.ports);
        }
    }

    /** The units of a host that have fewer paths. */
    private static final class Losses {
        private final String before;
        private final String worst;
        private int units;
        private boolean isCritical;

        private Losses(String before, String worst) {
            this.before = before;
            this.worst = worst;
        }
    }

    private final Network network;
    private final NetworkFindings findings;
    /** Those whose latest two recordings are of two machines. */
    private final Set<String> strangers = new HashSet<>();

    HistoryRules(Network network, NetworkFindings findings) {
        this.network = network;
        this.findings = findings;
    }

    /** Where recordings under one name are of two hosts. */
    void findDuplicateHosts(Store store) {
        Map<String, List<Recording>> histories = new HashMap<>();
        store.query(PORTS, row -> {
            List<Recording> history = histories.computeIfAbsent(row.getString(1), none -> new ArrayList<>());
            String recordedAt = row.getString(2);
            if (history.isEmpty() || !history.get(history.size() - 1).recordedAt.equals(recordedAt)) {
                history.add(new Recording(recordedAt));
            }
            return history.get(history.size() - 1).ports.add(row.getString(3));
        });
        for (Network.Host host : network.hosts) {
            find(host, histories.getOrDefault(host.name, List.of()));
        }
    }

    /**
     * A host whose adapters have been replaced has other ports from then on. That the latest recording has other ports
     * than the one before, or that earlier ones come back, is what two hosts look like that take turns.
     */
    private void find(Network.Host host, List<Recording> history) {
        for (int i = history.size() - 1; i > 0; i--) {
            Recording before = history.get(i - 1);
            Recording after = history.get(i);
            boolean isLatest = i == history.size() - 1;
            if (before.isOfAnother(after)
                && (isLatest || history.subList(i + 1, history.size()).stream().anyMatch(
                    later -> !before.isOfAnother(later)))) {
                findings.warn(NetworkFault.DUPLICATE_HOST, host.name, host,
                              before.recordedAt + " and at " + after.recordedAt);
                if (isLatest) {
                    strangers.add(host.name);
                }
                return;
            }
        }
    }

    /** What a host had when it was recorded before; to be asked after the duplicate hosts, which have lost nothing. */
    void findLosses(Store store) {
        Map<Network.Host, Losses> losses = new LinkedHashMap<>();
        store.query(LOSSES, row -> {
            Network.Host host = network.host(row.getLong(1));
            String before = row.getString(2);
            String unit = row.getString(3);
            long was = row.getLong(4);
            long left = row.getLong(5);
            if (row.wasNull()) {
                if (!strangers.contains(host.name)) {
                    findings.add(true, NetworkFault.UNIT_VANISHED, unit, List.of(host), before);
                }
            } else if (!strangers.contains(host.name)) {
                Losses lost = losses.computeIfAbsent(host, none -> new Losses(
                    before, unit + " from " + was + " to " + left));
                lost.units++;
                lost.isCritical |= 2 * left < was;
            }
            return null;
        });
        losses.forEach((host, lost) -> findings.add(
            lost.isCritical, NetworkFault.HOST_LOST_PATHS, host.name, List.of(host), lost.units
            + (lost.units == 1 ? " unit has" : " units have") + " fewer online paths than at " + lost.before + ": "
            + lost.worst + (lost.units == 1 ? "" : " and " + (lost.units - 1) + " more")));
    }
}
