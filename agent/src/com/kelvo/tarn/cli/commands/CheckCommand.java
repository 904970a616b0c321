package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.ArrayOption;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.FindingWords;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import java.util.List;
import java.util.Locale;
import java.util.stream.Collectors;
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

    private int fullPercent = FileSystemUse.FULL;

    @Option(names = "--full", paramLabel = "PERCENT", description = "From how many per cent on a file system is full "
            + "(90).")
    private void setFullPercent(int percent) {
        if (percent < 0 || percent > 100) {
            throw refusal("--full: '" + percent + "' is not from 0 to 100");
        }
        fullPercent = percent;
    }

    @Override
    public Answer ask() {
        Check check = Check.of(library(), fullPercent, array.arguments());
        return Answer.table(result(check), () -> table(check)).shownAs(out -> show(check, out))
            .withStatus(STATES.indexOf(check.state)).withLog(line -> !line.isWarning()); // which are findings
    }

    private static Object result(Check check) {
        return Json.object("state", check.state, "findings",
                           check.findings.stream().map(CheckCommand::result).collect(Collectors.toList()));
    }

    static Object result(Check.Finding finding) {
        return Json.object("severity", finding.severity, "code", finding.code, "subject", finding.subject, "message",
                           FindingWords.message(finding));
    }

    private static void show(Check check, Page out) {
        long criticals = check.findings.stream().filter(Check.Finding::isCritical).count();
        out.println("TARN " + check.state + " - " + (check.findings.isEmpty() ? "nothing found"
            : String.format(Locale.ROOT, "%d findings: %d critical, %d warnings", check.findings.size(), criticals,
                            check.findings.size() - criticals)));
        check.findings.forEach(finding -> out.printFolded("", " ".repeat(13), String.format(
            Locale.ROOT, "%-11s  %-22s  %s: %s", (finding.isCritical() ? Page.TROUBLE : "   ") + finding.severity,
            finding.code, finding.subject, FindingWords.message(finding))));
    }

    private static Table<?> table(Check check) {
        return new Table<>(check.findings).text("Severity", finding -> finding.severity)
            .text("Code", finding -> finding.code).text("Subject", finding -> finding.subject)
            .text("Message", FindingWords::message);
    }
}
