package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.IgnoredFindings;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.FindingOptions;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.NetworkFinding;
import com.kelvo.tarn.cli.san.NetworkVerdict;
import com.kelvo.tarn.cli.san.Store;
import java.time.Instant;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

/** {@code san check}: a {@link NetworkCheck} for people, or a line each for programs. */
@Command(name = "check", description = "What is wrong with the storage network that only shows across hosts, worst "
             + "first.",
         exitCodeOnInvalidInput = FindingOptions.UNKNOWN, exitCodeOnExecutionException = FindingOptions.UNKNOWN,
         footer = "Exit status, as monitoring plugins have it: 0 nothing, 1 warnings, 2 something critical, 3 bad "
             + "usage, a store that cannot be used or one without a host.")
public final class SanCheckCommand extends StoreInquiryCommand {
    @Mixin
    private FindingOptions options;

    @Override
    Answer ask(Store store) {
        IgnoredFindings silenced = new IgnoredFindings(NetworkCheck.codes());
        options.addTo(silenced);
        Instant now = Instant.now();
        NetworkCheck check = NetworkCheck.of(store, now, options.maxAge(), silenced);
        return Answer.table(NetworkVerdict.document(check), () -> table(check))
            .shownAs(NetworkVerdict.plugin(check, now)::show)
            .withStatus(FindingOptions.STATES.indexOf(check.state));
    }

    private static Table<?> table(NetworkCheck check) {
        return new Table<>(check.findings).text("Severity", NetworkFinding::severity)
            .text("Code", finding -> finding.fault.code()).text("Subject", finding -> finding.subject)
            .text("Message", NetworkFinding::message).text("Hosts", finding -> String.join(" ", finding.hosts()));
    }
}
