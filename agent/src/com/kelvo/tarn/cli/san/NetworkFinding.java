package com.kelvo.tarn.cli.san;

import java.util.Collection;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;

/** One thing that is wrong with the storage network. */
public final class NetworkFinding {
    /** What is wrong. */
    public final NetworkFault fault;
    /** What it is wrong with: the identity of a unit, a world-wide name, a host or a model. */
    public final String subject;

    private final Set<String> hosts = new TreeSet<>();
    private final Set<String> details = new TreeSet<>();
    private boolean isCritical;

    NetworkFinding(NetworkFault fault, String subject) {
        this.fault = fault;
        this.subject = subject;
    }

    void add(boolean critical, Collection<Network.Host> those, String detail) {
        isCritical |= critical;
        those.forEach(host -> hosts.add(host.name));
        details.add(detail);
    }

    /** {@return whether it is critical, and no warning} */
    public boolean isCritical() {
        return isCritical;
    }

    /** {@return "critical" or "warning"} */
    public String severity() {
        return isCritical ? "critical" : "warning";
    }

    /** {@return the names of the hosts that it is about, sorted} */
    public List<String> hosts() {
        return List.copyOf(hosts);
    }

    /** {@return what is wrong, in words} */
    public String message() {
        return fault.message(String.join(", ", details));
    }
}
