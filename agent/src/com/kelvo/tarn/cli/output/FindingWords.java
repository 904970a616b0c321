package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.ArrayReport;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;

/** What a check found, in words. */
public final class FindingWords {
    /** By the finding's code, of its fact; of any other, the fact itself is the words. */
    private static final Map<String, Function<Object, String>> WORDS = Map.ofEntries(
        Map.entry("file-system-unreadable", message -> Objects.toString(message, "the system does not tell its sizes")),
        Map.entry("file-system-full", use -> full((FileSystemUse) use)),
        Map.entry("processor-offline", state -> "its state is " + state),
        Map.entry("disk-unreadable", none -> "it has I/O counters, but cannot be opened"),
        Map.entry("disk-unlabelled", none -> "its geometry or its label cannot be read"),
        Map.entry("statistics-unreadable", none -> "its counters cannot be read"),
        Map.entry("port-not-online", port -> PortWords.of((TrInstance) port, HbaPortProvider.portState)),
        Map.entry("remote-port-not-online", port -> PortWords.of((TrInstance) port, HbaPortProvider.portState)),
        Map.entry("single-path", unit -> ((LogicalUnit) unit).onlinePaths() + " of " + ((LogicalUnit) unit).paths.size()
                      + " paths online"),
        Map.entry("drive-errors", rows -> ((List<?>) rows).stream().map(row -> errors((ArrayReport.Row) row))
                      .collect(Collectors.joining("; "))),
        Map.entry("array-counters", report -> ((ArrayReport) report).isNotCounting()
            ? "its controllers count no blocks, and were just told to (LOG SELECT)"
            : "no controller of that identity reported a drive"));

    private FindingWords() {
    }

    /**
     * {@return what is wrong, without what it is wrong with}
     *
     * @param finding of any kind
     */
    public static String message(Check.Finding finding) {
        return WORDS.getOrDefault(finding.code, fact -> Objects.toString(fact, "it cannot be read"))
            .apply(finding.fact);
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
