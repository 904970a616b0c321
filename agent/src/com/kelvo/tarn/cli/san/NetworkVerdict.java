package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.PluginText;
import com.kelvo.tarn.cli.output.Units;
import java.time.Duration;
import java.time.Instant;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/** What a check of the network comes to, for monitoring. */
public final class NetworkVerdict {
    /** So many hosts of a finding are told to people. */
    private static final int HOSTS = 4;

    private NetworkVerdict() {
    }

    /**
     * {@return a check as JSON has it}
     *
     * @param check what was found
     */
    public static Map<String, Object> document(NetworkCheck check) {
        return Json.object("state", check.state, "findings",
                           check.findings.stream().map(NetworkVerdict::document).collect(Collectors.toList()),
                           "ignored", check.ignored);
    }

    private static Object document(NetworkFinding finding) {
        return Json.object("severity", finding.severity(), "code", finding.fault.code(), "subject", finding.subject,
                           "hosts", finding.hosts(), "message", finding.message());
    }

    /**
     * {@return what a monitoring plugin prints}
     *
     * @param check what was found
     * @param now when
     */
    public static PluginText plugin(NetworkCheck check, Instant now) {
        String about = check.hosts == 0 ? "there is no host in the store" : check.hosts + " host"
            + (check.hosts == 1 ? "" : "s") + ", recorded up to " + Units.age(Duration.between(check.oldest, now))
            + " ago";
        return new PluginText("TARN SAN " + check.state, about, check.findings.stream().map(finding ->
            new PluginText.Line(finding.severity(), finding.fault.code(), subject(finding), finding.message()))
            .collect(Collectors.toList()), check.ignored, "hosts=" + check.hosts + ";;;0");
    }

    /** With the hosts that it is about. */
    private static String subject(NetworkFinding finding) {
        List<String> hosts = finding.hosts();
        return hosts.equals(List.of(finding.subject)) ? finding.subject : finding.subject + " ("
            + hosts.stream().limit(HOSTS).collect(Collectors.joining(", "))
            + (hosts.size() > HOSTS ? " and " + (hosts.size() - HOSTS) + " more" : "") + ")";
    }
}
