package com.kelvo.tarn.cli.san;

import java.time.Duration;
import java.time.Instant;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;
import java.util.stream.Collectors;

/** Whether what hosts consist of is told apart by its name, alike where it is the same, and known well enough. */
final class EquipmentRules {
    private final Network network;
    private final NetworkFindings findings;

    EquipmentRules(Network network, NetworkFindings findings) {
        this.network = network;
        this.findings = findings;
    }

    /** The same name twice within one host is for the check of that host. */
    void findDuplicateNames(Store store) {
        store.query("SELECT p.wwn, " + store.joined("p.snapshot_id") + " FROM latest_snapshot s"
                    + " JOIN port p ON p.snapshot_id = s.snapshot_id WHERE p.wwn <> ''"
                    + " GROUP BY p.wwn HAVING MIN(p.snapshot_id) < MAX(p.snapshot_id)", row -> {
            Set<Network.Host> hosts = Set.copyOf(network.hosts(row.getString(2)));
            findings.warn(NetworkFault.DUPLICATE_WWN, row.getString(1), hosts, String.valueOf(hosts.size()));
            return null;
        });
    }

    /** Where adapters of a model have several versions of the firmware or of the driver. */
    void findDrift(Store store) {
        Versions firmware = new Versions(NetworkFault.FIRMWARE_DRIFT);
        Versions drivers = new Versions(NetworkFault.DRIVER_DRIFT);
        store.query("SELECT a.model, a.firmware, a.driver, " + store.joined("a.snapshot_id")
                    + " FROM latest_snapshot s JOIN adapter a ON a.snapshot_id = s.snapshot_id WHERE a.model <> ''"
                    + " GROUP BY a.model, a.firmware, a.driver", row -> {
            List<Network.Host> hosts = network.hosts(row.getString(4));
            firmware.add(row.getString(1), row.getString(2), hosts);
            drivers.add(row.getString(1), row.getString(3), hosts);
            return null;
        });
        firmware.findDrift();
        drivers.findDrift();
    }

    /** What the adapters of each model have of one kind. */
    private final class Versions {
        private final NetworkFault fault;
        /** A host as often as it has such an adapter. */
        private final Map<String, Map<String, List<Network.Host>>> hosts = new HashMap<>();

        private Versions(NetworkFault fault) {
            this.fault = fault;
        }

        private void add(String model, String version, List<Network.Host> those) {
            if (!version.isEmpty()) {
                hosts.computeIfAbsent(model, none -> new TreeMap<>())
                    .computeIfAbsent(version, none -> new ArrayList<>()).addAll(those);
            }
        }

        private void findDrift() {
            hosts.forEach((model, versions) -> {
                // Of equals, what is greater as a text is more likely the later one.
                String usual = versions.keySet().stream().max(
                    Comparator.<String>comparingInt(version -> versions.get(version).size())
                        .thenComparing(Comparator.naturalOrder())).orElseThrow();
                String all = versions.entrySet().stream().map(each -> each.getKey() + " on " + each.getValue().size())
                    .collect(Collectors.joining(", ")) + " adapters";
                versions.forEach((version, those) -> {
                    if (!version.equals(usual)) {
                        findings.warn(fault, model, those, all);
                    }
                });
            });
        }
    }

    /** Where the latest recording is older than that. */
    void findOld(Instant now, Duration maxAge) {
        for (Network.Host host : network.hosts) {
            if (Instant.parse(host.recordedAt).isBefore(now.minus(maxAge))) {
                findings.warn(NetworkFault.HOST_OLD, host.name, host, host.recordedAt);
            }
        }
    }
}
