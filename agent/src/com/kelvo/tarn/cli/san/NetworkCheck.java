package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.answers.IgnoredFindings;
import java.time.Duration;
import java.time.Instant;
import java.util.Comparator;
import java.util.List;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What is wrong with the storage network that only shows where its hosts are held against each other. */
public final class NetworkCheck {
    /** "OK", "WARNING" or "CRITICAL", as monitoring plugins have it; "UNKNOWN" where there is no host. */
    public final String state;
    /** The critical ones first. */
    public final List<NetworkFinding> findings;
    /** How many more there are, which are silenced. */
    public final int ignored;
    /** How many hosts there are. */
    public final int hosts;
    /** When the host was recorded that is known worst; null where there is none. */
    public final Instant oldest;

    private NetworkCheck(Network network, List<NetworkFinding> found, IgnoredFindings silenced) {
        findings = found.stream().filter(finding -> !silenced.contains(finding.fault.code(), finding.subject))
            .sorted(Comparator.comparing(finding -> !finding.isCritical())).collect(Collectors.toList());
        ignored = found.size() - findings.size();
        hosts = network.hosts.size();
        // As texts they are in the same order, and need not all be understood.
        oldest = network.hosts.stream().map(host -> host.recordedAt).min(Comparator.naturalOrder())
            .map(Instant::parse).orElse(null);
        state = hosts == 0 ? "UNKNOWN" : findings.isEmpty() ? "OK"
            : findings.get(0).isCritical() ? "CRITICAL" : "WARNING";
    }

    /**
     * {@return what is wrong with the network}
     *
     * @param store what hosts tell of it
     * @param now what ages are counted to; null: as maxAge
     * @param maxAge how old a recording may be; null: as old as it likes
     * @param silenced what is not to be found
     */
    public static NetworkCheck of(Store store, Instant now, Duration maxAge, IgnoredFindings silenced) {
        Network network = new Network(store);
        NetworkFindings findings = new NetworkFindings();
        PathRules paths = new PathRules(network, findings);
        paths.findOneWay(store);
        paths.findZoningGaps();
        paths.findCrowds();
        PeerRules peers = new PeerRules(network, findings);
        peers.findLacking();
        peers.findSharedApart();
        EquipmentRules equipment = new EquipmentRules(network, findings);
        equipment.findDuplicateNames(store);
        equipment.findDrift(store);
        if (maxAge != null) {
            equipment.findOld(now, maxAge);
        }
        HistoryRules history = new HistoryRules(network, findings);
        history.findDuplicateHosts(store);
        history.findLosses(store);
        return new NetworkCheck(network, findings.stream().collect(Collectors.toList()), silenced);
    }

    /**
     * {@return all that is wrong with the network, however old its recordings are}
     *
     * @param store what hosts tell of it
     */
    public static NetworkCheck of(Store store) {
        return of(store, null, null, new IgnoredFindings(codes()));
    }

    /** {@return what may be wrong: the words for programs} */
    public static Stream<String> codes() {
        return Stream.of(NetworkFault.values()).map(NetworkFault::code);
    }
}
