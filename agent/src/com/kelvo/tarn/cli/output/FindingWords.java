package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.ArrayReport;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.List;
import java.util.stream.Collectors;

/** What a check found, in words. */
public final class FindingWords {
    private FindingWords() {
    }

    /**
     * {@return what is wrong, without what it is wrong with}
     *
     * @param finding of any kind
     */
    public static String message(Check.Finding finding) {
        switch (finding.code) {
            case "file-system-unreadable":
                return finding.fact == null ? "the system does not tell its sizes" : finding.fact.toString();
            case "file-system-full":
                return full((FileSystemUse) finding.fact);
            case "processor-offline":
                return "its state is " + finding.fact;
            case "disk-unreadable":
                return "it has I/O counters, but cannot be opened";
            case "disk-unlabelled":
                return "its geometry or its label cannot be read";
            case "statistics-unreadable":
                return "its counters cannot be read";
            case "port-not-online":
            case "remote-port-not-online":
                return PortWords.of((TrInstance) finding.fact, HbaPortProvider.portState);
            case "single-path":
                LogicalUnit unit = (LogicalUnit) finding.fact;
                return unit.onlinePaths() + " of " + unit.paths.size() + " paths online";
            case "drive-errors":
                return ((List<?>) finding.fact).stream().map(row -> errors((ArrayReport.Row) row))
                    .collect(Collectors.joining("; "));
            case "array-counters":
                return ((ArrayReport) finding.fact).isNotCounting()
                    ? "its controllers count no blocks, and were just told to (LOG SELECT)"
                    : "no controller of that identity reported a drive";
            default:
                return finding.fact == null ? "it cannot be read" : finding.fact.toString();
        }
    }

    private static String full(FileSystemUse use) {
        return use.isExhausted() ? "nothing is available"
            : Units.percent(use.used().doubleValue(), use.usable().doubleValue()) + " used, "
                + Units.bytes(use.available().doubleValue()) + " available";
    }

    private static String errors(ArrayReport.Row row) {
        return row.controller + " counts unrecovered errors: " + row.unrecovered() + ", request timeouts: "
            + row.timeouts();
    }
}
