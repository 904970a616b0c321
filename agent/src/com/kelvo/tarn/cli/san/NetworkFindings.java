package com.kelvo.tarn.cli.san;

import java.util.Collection;
import java.util.EnumMap;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.stream.Stream;

/** What has been found so far: one finding for each code and subject, whatever the number of hosts. */
final class NetworkFindings {
    private final Map<NetworkFault, Map<String, NetworkFinding>> found = new EnumMap<>(NetworkFault.class);

    /** The detail is what the words of the fault leave open. */
    void warn(NetworkFault fault, String subject, Collection<Network.Host> hosts, String detail) {
        add(false, fault, subject, hosts, detail);
    }

    void warn(NetworkFault fault, String subject, Network.Host host, String detail) {
        add(false, fault, subject, List.of(host), detail);
    }

    void add(boolean critical, NetworkFault fault, String subject, Collection<Network.Host> hosts, String detail) {
        found.computeIfAbsent(fault, none -> new TreeMap<>())
            .computeIfAbsent(subject, none -> new NetworkFinding(fault, subject)).add(critical, hosts, detail);
    }

    /** By fault, then subject. */
    Stream<NetworkFinding> stream() {
        return found.values().stream().flatMap(each -> each.values().stream());
    }
}
