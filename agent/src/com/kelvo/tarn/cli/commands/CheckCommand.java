package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.ArrayOption;
import com.kelvo.tarn.cli.frame.FindingOptions;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.FindingWords;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Verdict;
import java.util.ArrayList;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code check}: a {@link Check} for people, or a line each for programs. */
@Command(name = "check", description = "What is wrong with the host, worst first.",
         exitCodeOnInvalidInput = FindingOptions.UNKNOWN, exitCodeOnExecutionException = FindingOptions.UNKNOWN,
         footer = "With --max-age, a recording that does not say when it was made is too old. Exit status, as "
             + "monitoring plugins have it: 0 nothing, 1 warnings, 2 something critical, 3 bad usage or an unreadable "
             + "host description.")
public final class CheckCommand extends TableCommand {
    @Mixin
    private ArrayOption array;

    @Mixin
    private FindingOptions options;

    private final CheckRules rules = new CheckRules();

    @Option(names = "--baseline", paramLabel = "FILE", description = "A recording of the host made when all was well: "
            + "also what is gone since, and errors counted since.")
    private String baseline;

    @Option(names = {"-w", "--full"}, paramLabel = "PERCENT|MOUNT=PERCENT", description = "From how many per cent used "
            + "on a file system is full, each (90) or the one that is mounted there; as often as there are such.")
    private List<String> fullFrom = new ArrayList<>();

    @Option(names = {"-c", "--critical"}, paramLabel = "PERCENT", description = "From how many per cent used on that "
            + "is critical. Without it, only when nothing is available.")
    private String criticalFrom;

    private void readLimits() {
        boolean hasLimit = false;
        for (String limit : fullFrom) {
            int sign = limit.lastIndexOf('=');
            int percent = percent("--full", limit.substring(sign + 1));
            boolean again = sign < 0 ? hasLimit : rules.warningPercents.put(limit.substring(0, sign), percent) != null;
            if (again) {
                throw refusal("--full: more than one limit for "
                              + (sign < 0 ? "all file systems" : limit.substring(0, sign)));
            }
            if (sign < 0) {
                hasLimit = true;
                rules.warningPercent = percent;
            }
        }
        if (criticalFrom != null) {
            rules.criticalPercent = percent("--critical", criticalFrom);
        }
    }

    private int percent(String option, String given) {
        if (!given.matches("[+-]?\\d+%?")) {
            throw refusal(option + ": '" + given + "' is not a number");
        }
        if (!given.matches("0*(\\d{1,2}|100)%?")) {
            throw refusal(option + ": '" + given + "' is not from 0 to 100");
        }
        return Integer.parseInt(given.replace("%", ""));
    }

    @Override
    public Answer ask() {
        readLimits();
        rules.maxAge = options.maxAge();
        options.addTo(rules.ignored);
        Asked asked = new Asked(library(), array.arguments());
        Asked before = baseline == null ? null
            : tarn().at(baseline, spec().commandLine(), () -> new Asked(library(), List.of()));
        Check check = Check.of(asked, before, rules);
        asked.warnOfMounts();
        return Answer.table(Verdict.document(check, asked), () -> table(check))
            .shownAs(Verdict.plugin(check, asked, rules, tarn().isBuiltInHost())::show)
            .withStatus(FindingOptions.STATES.indexOf(check.state))
            .withLog(line -> line.isOwn() || !line.isWarning()); // the library's are findings
    }

    private static Table<?> table(Check check) {
        return new Table<>(check.findings).text("Severity", finding -> finding.severity)
            .text("Code", finding -> finding.code).text("Subject", finding -> finding.subject)
            .text("Message", FindingWords::message)
            .text("Disks", finding -> String.join(" ", finding.disks))
            .text("Mount points", finding -> String.join(" ", finding.mounts));
    }
}
