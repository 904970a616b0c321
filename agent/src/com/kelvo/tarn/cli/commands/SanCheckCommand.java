package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.IgnoredFindings;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.FindingOptions;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.PluginText;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.NetworkFinding;
import com.kelvo.tarn.cli.san.Store;
import java.time.Duration;
import java.time.Instant;
import java.util.List;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

/** {@code san check}: a {@link NetworkCheck} for people, or a line each for programs. */
@Command(name = "check", description = "What is wrong with the storage network that only shows across hosts, worst "
             + "first.",
         exitCodeOnInvalidInput = FindingOptions.UNKNOWN, exitCodeOnExecutionException = FindingOptions.UNKNOWN,
         footer = "Exit status, as monitoring plugins have it: 0 nothing, 1 warnings, 2 something critical, 3 bad "
             + "usage, a store that cannot be used or one without a host.")
public final class SanCheckCommand extends StoreInquiryCommand {
    /** So many hosts of a finding are told to people. */
    private static final int HOSTS = 4;

    @Mixin
    private FindingOptions options;

    @Override
    Answer ask(Store store) {
        IgnoredFindings silenced = new IgnoredFindings(NetworkCheck.codes());
        options.addTo(silenced);
        Instant now = Instant.now();
        NetworkCheck check = NetworkCheck.of(store, now, options.maxAge(), silenced);
        Object result = Json.object("state", check.state, "findings", check.findings.stream()
            .map(SanCheckCommand::document).collect(Collectors.toList()), "ignored", check.ignored);
        return Answer.table(result, () -> table(check)).shownAs(plugin(check, now)::show)
            .withStatus(FindingOptions.STATES.indexOf(check.state));
    }

    private static Object document(NetworkFinding finding) {
        return Json.object("severity", finding.severity(), "code", finding.fault.code(), "subject", finding.subject,
                           "hosts", finding.hosts(), "message", finding.message());
    }

    private static PluginText plugin(NetworkCheck check, Instant now) {
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

    private static Table<?> table(NetworkCheck check) {
        return new Table<>(check.findings).text("Severity", NetworkFinding::severity)
            .text("Code", finding -> finding.fault.code()).text("Subject", finding -> finding.subject)
            .text("Message", NetworkFinding::message).text("Hosts", finding -> String.join(" ", finding.hosts()));
    }
}
