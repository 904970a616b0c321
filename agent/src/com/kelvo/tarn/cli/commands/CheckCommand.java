package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;

/** {@code check}: a {@link Check} for people, or a line each for programs. */
@Command(name = "check", description = "What is wrong with the host, worst first.",
         exitCodeOnInvalidInput = CheckCommand.unknown, exitCodeOnExecutionException = CheckCommand.unknown,
         footer = "Exit status, as monitoring plugins have it: 0 nothing, 1 warnings, 2 something critical, 3 bad "
             + "usage or an unreadable host description.")
public final class CheckCommand extends TableInquiry<Check> {
    static final int unknown = 3;
    private static final List<String> states = List.of("OK", "WARNING", "CRITICAL");

    @Mixin
    private ArrayOption array;

    private int fullPercent = FileSystemUse.FULL;

    @Option(names = "--full", paramLabel = "PERCENT", description = "From how many per cent on a file system is full "
            + "(90).")
    private void setFullPercent(int percent) {
        if (percent < 0 || percent > 100) {
            throw new ParameterException(spec().commandLine(), "--full: '" + percent + "' is not from 0 to 100");
        }
        fullPercent = percent;
    }

    @Override
    protected Check ask() {
        return Check.of(library(), tarn().log(), fullPercent, array.arguments());
    }

    @Override
    protected int exitStatus(Check check) {
        return states.indexOf(check.state);
    }

    @Override
    protected void show(Check check, Page out) {
        out.println("TARN " + check.state + " - " + (check.findings.isEmpty() ? "nothing found"
            : String.format("%d findings: %d critical, %d warnings", check.findings.size(), check.criticals(),
                            check.findings.size() - check.criticals())));
        check.findings.forEach(finding -> out.printFolded("", " ".repeat(13), String.format(
            "%-11s  %-22s  %s: %s", finding.isCritical() ? "!! critical" : "   warning", finding.code, finding.subject,
            finding.message)));
    }

    @Override
    protected Table<?> table(Check check) {
        return new Table<>(check.findings).text("Severity", finding -> finding.severity)
            .text("Code", finding -> finding.code).text("Subject", finding -> finding.subject)
            .text("Message", finding -> finding.message);
    }

    /** The warnings are findings. */
    @Override
    protected boolean isToThePoint(LibraryLog.Line line, Check check) {
        return !line.isWarning();
    }

    @Override
    protected boolean isSection() {
        return false;
    }
}
