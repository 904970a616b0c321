package com.kelvo.tarn.cli.san;

import java.time.Duration;
import java.time.Instant;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashSet;
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
    void findDuplicateNames() {
        Map<String, Network.Host> first = new HashMap<>();
        Map<String, Set<Network.Host>> several = new HashMap<>();
        for (Network.Host host : network.hosts) {
            for (Network.Port port : host.ports) {
                Network.Host other = port.wwn.isEmpty() ? null : first.putIfAbsent(port.wwn, host);
                if (other != null && other != host) {
                    Set<Network.Host> those = several.computeIfAbsent(port.wwn, none -> new LinkedHashSet<>());
                    those.add(other);
                    those.add(host);
                }
            }
        }
        several.forEach((wwn, hosts) -> findings.warn(
            NetworkFault.DUPLICATE_WWN, wwn, hosts, String.valueOf(hosts.size())));
    }

    /** Where adapters of a model have several versions of the firmware or of the driver. */
    void findDrift(Store store) {
        Versions firmware = new Versions(NetworkFault.FIRMWARE_DRIFT);
        Versions drivers = new Versions(NetworkFault.DRIVER_DRIFT);
        store.query("SELECT a.snapshot_id, a.model, a.firmware, a.driver FROM latest_snapshot s"
                    + " JOIN adapter a ON a.snapshot_id = s.snapshot_id WHERE a.model <> ''", row -> {
            Network.Host host = network.host(row.getLong(1));
            String model = row.getString(2);
            firmware.add(model, row.getString(3), host);
            drivers.add(model, row.getString(4), host);
            return null;
        });
        firmware.findDrift();
        drivers.findDrift();
    }

    /** What the adapters of each model have of one kind. */
    private final class Versions {
        private final NetworkFault fault;
        private final Map<String, Map<String, Integer>> adapters = new HashMap<>();
        private final Map<String, Map<String, Set<Network.Host>>> hosts = new HashMap<>();

        private Versions(NetworkFault fault) {
            this.fault = fault;
        }

        private void add(String model, String version, Network.Host host) {
            if (!version.isEmpty()) {
                adapters.computeIfAbsent(model, none -> new TreeMap<>()).merge(version, 1, Integer::sum);
                hosts.computeIfAbsent(model, none -> new HashMap<>())
                    .computeIfAbsent(version, none -> new LinkedHashSet<>()).add(host);
            }
        }

        private void findDrift() {
            adapters.forEach((model, counts) -> {
                // Of equals, what is greater as a text is more likely the later one.
                String usual = counts.entrySet().stream().max(
                    Map.Entry.<String, Integer>comparingByValue().thenComparing(Map.Entry.comparingByKey(
                        Comparator.naturalOrder()))).orElseThrow().getKey();
                String all = counts.entrySet().stream().map(each -> each.getKey() + " on " + each.getValue())
                    .collect(Collectors.joining(", ")) + " adapters";
                hosts.get(model).forEach((version, those) -> {
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
