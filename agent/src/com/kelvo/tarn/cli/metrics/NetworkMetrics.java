package com.kelvo.tarn.cli.metrics;

import com.kelvo.tarn.cli.san.ListedArrayPort;
import com.kelvo.tarn.cli.san.ListedHost;
import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.NetworkFault;
import com.kelvo.tarn.cli.san.PortFilter;
import com.kelvo.tarn.cli.san.Store;
import java.time.Instant;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/** A storage network in numbers: some for each host, switch and port of an array, and none for each path or unit. */
public final class NetworkMetrics {
    private static final String SWITCHES = "SELECT fabric, domain, COUNT(DISTINCT snapshot_id) AS hosts,"
        + " COUNT(*) AS ports FROM latest_port WHERE fabric <> '' AND domain <> 0 GROUP BY fabric, domain"
        + " ORDER BY fabric, domain";

    private static final String FABRICS = "SELECT fabric, COUNT(DISTINCT snapshot_id) AS hosts, COUNT(*) AS ports"
        + " FROM latest_port WHERE fabric <> '' GROUP BY fabric ORDER BY fabric";

    private static final String FINDINGS = "SELECT f.severity, f.code, COUNT(*) AS findings FROM latest_snapshot s"
        + " JOIN finding f ON f.snapshot_id = s.snapshot_id GROUP BY f.severity, f.code ORDER BY f.severity, f.code";

    /** Units by the worst that any of their hosts has. */
    private static final String UNITS = "SELECT redundancy, COUNT(*) AS units FROM (SELECT CASE"
        + " WHEN MIN(r.paths) = 0 THEN 'no_path' WHEN MIN(r.paths) = 1 THEN 'single_path'"
        + " WHEN COUNT(r.one_array_port) > 0 THEN 'one_array_port' WHEN COUNT(r.one_switch) > 0 THEN 'one_switch'"
        + " WHEN COUNT(r.one_fabric) > 0 THEN 'one_fabric' ELSE 'redundant' END AS redundancy"
        + " FROM latest_snapshot s JOIN reach r ON r.snapshot_id = s.snapshot_id GROUP BY r.unit_id) of_unit"
        + " GROUP BY redundancy";

    private static final List<String> REDUNDANCIES =
        List.of("no_path", "single_path", "one_array_port", "one_switch", "one_fabric", "redundant");

    private final Store store;
    private final Exposition out = new Exposition();

    private NetworkMetrics(Store store) {
        this.store = store;
    }

    /**
     * {@return all that is measured of a network}
     *
     * @param store what is asked
     * @param check what is wrong with it
     */
    public static Exposition of(Store store, NetworkCheck check) {
        NetworkMetrics metrics = new NetworkMetrics(store);
        addUp(metrics.out, 1);
        metrics.addHosts();
        metrics.addSwitches();
        metrics.addArrayPorts();
        metrics.addUnits();
        metrics.addCheck(check);
        return metrics.out;
    }

    /** {@return what is told of a network whose store does not answer} */
    public static Exposition unknown() {
        return addUp(new Exposition(), 0);
    }

    private static Exposition addUp(Exposition out, int up) {
        out.gauge("tarn_section_up", "Whether the store answered; nothing else is told where it did not.")
            .sample(up, labels("section", "san"));
        return out;
    }

    private void addHosts() {
        List<ListedHost> hosts = ListedHost.of(store, new PortFilter(), null);
        out.gauge("tarn_san_hosts", "Hosts in the store.").sample(hosts.size(), "");
        Exposition.Family recorded = out.gauge("tarn_san_host_recorded_timestamp_seconds",
                                               "When the host was recorded latest.");
        Exposition.Family ports = out.gauge("tarn_san_host_ports", "Ports of the host, by whether they are online.");
        Exposition.Family units = out.gauge("tarn_san_host_units", "Units that the host has paths to.");
        Exposition.Family paths = out.gauge("tarn_san_host_paths", "Paths of the host that are online at both ends.");
        for (ListedHost host : hosts) {
            recorded.sample(Instant.parse(host.recordedAt).getEpochSecond(), labels("host", host.host));
            ports.sample(host.portsOnline, labels("host", host.host, "state", "online"));
            ports.sample(host.ports - host.portsOnline, labels("host", host.host, "state", "other"));
            units.sample(host.units, labels("host", host.host));
            paths.sample(host.paths, labels("host", host.host));
        }
        Exposition.Family findings = out.gauge("tarn_san_host_findings",
                                               "What the check of each host alone finds, over all hosts.");
        store.query(FINDINGS, row -> findings.sample(
            row.getLong("findings"), labels("severity", row.getString("severity"), "code", row.getString("code"))));
    }

    private void addSwitches() {
        Exposition.Family hosts = out.gauge("tarn_san_fabric_hosts", "Hosts with a port in the fabric.");
        Exposition.Family ports = out.gauge("tarn_san_fabric_host_ports", "Ports of hosts in the fabric.");
        store.query(FABRICS, row -> {
            hosts.sample(row.getLong("hosts"), labels("fabric", row.getString("fabric")));
            return ports.sample(row.getLong("ports"), labels("fabric", row.getString("fabric")));
        });
        Exposition.Family switched = out.gauge("tarn_san_switch_hosts", "Hosts with a port at the switch.");
        Exposition.Family plugged = out.gauge("tarn_san_switch_host_ports", "Ports of hosts at the switch.");
        store.query(SWITCHES, row -> {
            String labels = labels("fabric", row.getString("fabric"), "domain", row.getInt("domain"));
            switched.sample(row.getLong("hosts"), labels);
            return plugged.sample(row.getLong("ports"), labels);
        });
    }

    private void addArrayPorts() {
        Map<String, Integer> ofFabric = new TreeMap<>();
        Map<String, Map<Integer, Integer>> ofSwitch = new TreeMap<>();
        Exposition.Family hosts = out.gauge("tarn_san_array_port_hosts",
                                            "Hosts that have discovered the port, by whether they see it online.");
        Exposition.Family initiators = out.gauge("tarn_san_array_port_initiators",
                                                 "Ports of hosts that have discovered the port.");
        for (ListedArrayPort port : ListedArrayPort.of(store, new PortFilter(), null, null)) {
            String labels = labels("fabric", port.fabric, "wwn", port.wwn, "node", port.node);
            hosts.sample(port.hostsOnline, HostMetrics.with(labels, "state", "online"));
            hosts.sample(port.hosts - port.hostsOnline, HostMetrics.with(labels, "state", "other"));
            initiators.sample(port.initiators, labels);
            if (!port.fabric.isEmpty()) {
                ofFabric.merge(port.fabric, 1, Integer::sum);
            }
            if (!port.fabric.isEmpty() && port.domain != 0) {
                ofSwitch.computeIfAbsent(port.fabric, added -> new TreeMap<>()).merge(port.domain, 1, Integer::sum);
            }
        }
        Exposition.Family inFabric = out.gauge("tarn_san_fabric_array_ports", "Ports of arrays in the fabric.");
        ofFabric.forEach((fabric, ports) -> inFabric.sample(ports, labels("fabric", fabric)));
        Exposition.Family atSwitch = out.gauge("tarn_san_switch_array_ports", "Ports of arrays at the switch.");
        ofSwitch.forEach((fabric, domains) -> domains.forEach(
            (domain, ports) -> atSwitch.sample(ports, labels("fabric", fabric, "domain", domain))));
    }

    private void addUnits() {
        Map<String, Long> counted = new TreeMap<>();
        store.query(UNITS, row -> counted.put(row.getString("redundancy"), row.getLong("units")));
        Exposition.Family units = out.gauge("tarn_san_units", "Units, by the worst that any of their hosts has: no"
                                            + " path, one, or all through one thing.");
        REDUNDANCIES.forEach(each -> units.sample(counted.getOrDefault(each, 0L), labels("redundancy", each)));
    }

    /** Also what is not found, so that a series is there before it rises. */
    private void addCheck(NetworkCheck check) {
        Exposition.Family found = out.gauge("tarn_san_check_findings", "What the command san check finds, by severity"
                                            + " and code.");
        for (NetworkFault fault : NetworkFault.values()) {
            if (fault == NetworkFault.HOST_OLD) { // nobody has said what is old
                continue;
            }
            long all = check.findings.stream().filter(finding -> finding.fault == fault).count();
            long criticals =
                check.findings.stream().filter(finding -> finding.fault == fault && finding.isCritical()).count();
            found.sample(criticals, labels("severity", "critical", "code", fault.code()));
            found.sample(all - criticals, labels("severity", "warning", "code", fault.code()));
        }
    }

    private static String labels(Object... pairs) {
        return Exposition.labels(pairs);
    }
}
