package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.HbaTree;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.HbaOptions;
import com.kelvo.tarn.cli.frame.InquiryCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.hba.HbaCache;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code hba}: one call of {@code fillHbaCache}. */
@Command(name = "hba", description = "The Fibre Channel adapters with their ports, remote ports and logical units.")
public final class HbaCommand extends InquiryCommand {
    @Mixin
    private HbaOptions options;

    @Option(names = "--baseline", paramLabel = "FILE", description = "A recording made when all was well: error counters "
            + "that rose since are marked.")
    private String baseline;

    @Override
    public Answer ask() {
        HbaOptions names = options.and(tarn().hba());
        HbaCache.Hba[] adapters = names.fill(library());
        Fabric seen = tarn().json() ? null : names.fabric(library(), adapters);
        Fabric before = baseline == null ? null : tarn().at(baseline, spec().commandLine(), library()::fabric);
        return Answer.page(adapters, out -> print(seen, new HbaTree(false, before), out))
            .summarizedAs(out -> print(seen, new HbaTree(true, before), out))
            .withLog(line -> line.subject().isEmpty()); // not of the disks that the units are named after
    }

    private static void print(Fabric fabric, HbaTree tree, Page out) {
        if (fabric.adapters.isEmpty()) {
            out.println("no host bus adapters");
        }
        fabric.adapters.forEach(adapter -> tree.of(adapter).print(out));
    }
}
