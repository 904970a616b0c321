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
            case FILE_SYSTEM_UNREADABLE:
                return finding.fact == null ? "the system does not tell its sizes" : finding.fact.toString();
            case FILE_SYSTEM_FULL:
                return full((FileSystemUse) finding.fact);
            case PROCESSOR_OFFLINE:
                return "its state is " + finding.fact;
            case DISK_UNREADABLE:
                return "it has I/O counters, but cannot be opened";
            case DISK_UNLABELLED:
                return "its geometry or its label cannot be read";
            case STATISTICS_UNREADABLE:
                return "its counters cannot be read";
            case PORT_NOT_ONLINE:
            case REMOTE_PORT_NOT_ONLINE:
                return PortWords.of((TrInstance) finding.fact, HbaPortProvider.portState);
            case SINGLE_PATH:
                LogicalUnit unit = (LogicalUnit) finding.fact;
                return unit.onlinePaths() + " of " + unit.paths.size() + " paths online";
            case DRIVE_ERRORS:
                return ((List<?>) finding.fact).stream().map(row -> errors((ArrayReport.Row) row))
                    .collect(Collectors.joining("; "));
            case ARRAY_COUNTERS:
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
