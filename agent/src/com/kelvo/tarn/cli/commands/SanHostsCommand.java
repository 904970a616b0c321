package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.cli.san.ListedHost;
import com.kelvo.tarn.cli.san.Store;
import java.time.Duration;
import java.time.Instant;
import java.time.temporal.ChronoUnit;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code san hosts}: each {@link ListedHost}. */
@Command(name = "hosts", description = "The hosts of the storage network: when they were recorded, and how they are "
             + "connected.",
         footer = "Paths are those online at both ends; findings are those of each host alone, as check has them.")
public final class SanHostsCommand extends StoreInquiryCommand {
    @Mixin
    private PortFilterOptions ports;

    @Option(names = "--older-than", paramLabel = "DURATION", description = "Only those recorded longer ago: 90m, 36h, "
            + "7d.")
    private String olderThan;

    @Override
    Answer ask(Store store) {
        Instant now = Instant.now().truncatedTo(ChronoUnit.SECONDS);
        Instant before = olderThan == null ? null : now.minus(duration("--older-than", olderThan));
        List<ListedHost> hosts = ListedHost.of(store, ports.filter(), before);
        return Answer.listing("host", null, () -> hosts, null, rows -> new Table<>(rows)
            .text("Host", row -> row.host)
            .text("Recorded", row -> row.recordedAt,
                  row -> Units.age(Duration.between(Instant.parse(row.recordedAt), now)) + " ago")
            .number("Ports", row -> row.ports)
            .number("Online", row -> row.portsOnline,
                    row -> (row.portsOnline < row.ports ? Page.TROUBLE : "") + row.portsOnline)
            .number("Units", row -> row.units).number("Paths", row -> row.paths)
            .number("Findings", row -> row.findings).text("Platform", row -> row.platform));
    }
}
