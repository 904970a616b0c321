package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.ArrayOption;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.FindingWords;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Verdict;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code check}: a {@link Check} for people, or a line each for programs. */
@Command(name = "check", description = "What is wrong with the host, worst first.",
         exitCodeOnInvalidInput = CheckCommand.UNKNOWN, exitCodeOnExecutionException = CheckCommand.UNKNOWN,
         footer = "Exit status, as monitoring plugins have it: 0 nothing, 1 warnings, 2 something critical, 3 bad "
             + "usage or an unreadable host description.")
public final class CheckCommand extends TableCommand {
    static final int UNKNOWN = 3;
    private static final List<String> STATES = List.of("OK", "WARNING", "CRITICAL");

    @Mixin
    private ArrayOption array;

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

    @Option(names = "--max-age", paramLabel = "DURATION", description = "How old a recording may be: 90m, 36h, "
            + "7d. One that does not say is too old.")
    private String maxAge;

    @Option(names = "--ignore", paramLabel = "CODE[:SUBJECT]", description = "Find no such thing; * stands for any "
            + "text. May be repeated.")
    private List<String> ignored = new ArrayList<>();

    @Option(names = "--ignore-file", paramLabel = "FILE", description = "The same, a line each, with comments after #.")
    private String ignoreFile;

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

    private void ignore() {
        List<String> patterns = new ArrayList<>(ignored);
        if (ignoreFile != null) {
            try {
                Files.readAllLines(Path.of(ignoreFile)).stream()
                    .map(line -> line.replaceFirst("(^|\\s)#.*", "").strip())
                    .filter(line -> !line.isEmpty()).forEach(patterns::add);
            } catch (IOException | InvalidPathException unreadable) {
                throw refusal("--ignore-file: " + ignoreFile + " cannot be read");
            }
        }
        patterns.stream().filter(pattern -> !rules.ignore(pattern)).findFirst().ifPresent(pattern -> {
            throw refusal("--ignore: '" + pattern + "' begins with no code of a finding");
        });
    }

    @Override
    public Answer ask() {
        readLimits();
        rules.maxAge = maxAge == null ? null : duration("--max-age", maxAge);
        ignore();
        Asked asked = new Asked(library(), array.arguments());
        Asked before = baseline == null ? null
            : tarn().at(baseline, spec().commandLine(), () -> new Asked(library(), List.of()));
        Check check = Check.of(asked, before, rules);
        return Answer.table(Verdict.document(check, asked), () -> table(check))
            .shownAs(out -> Verdict.show(check, asked, rules, tarn().isBuiltInHost(), out))
            .withStatus(STATES.indexOf(check.state)).withLog(line -> !line.isWarning()); // which are findings
    }

    private static Table<?> table(Check check) {
        return new Table<>(check.findings).text("Severity", finding -> finding.severity)
            .text("Code", finding -> finding.code).text("Subject", finding -> finding.subject)
            .text("Message", FindingWords::message)
            .text("Disks", finding -> String.join(" ", finding.disks))
            .text("Mount points", finding -> String.join(" ", finding.mounts));
    }
}
