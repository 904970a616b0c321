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

/** {@code hba}: one call of {@code fillHbaCache}. */
@Command(name = "hba", description = "The Fibre Channel adapters with their ports, remote ports and logical units.")
public final class HbaCommand extends InquiryCommand {
    @Mixin
    private HbaOptions options;

    @Override
    public Answer ask() {
        HbaOptions names = options.and(tarn().hba());
        HbaCache.Hba[] adapters = names.fill(library());
        return Answer.page(adapters, out -> {
            Fabric fabric = new Fabric(adapters);
            print(fabric, false, out);
            names.explainDeviceNames(fabric, out);
        }).summarizedAs(out -> print(new Fabric(adapters), true, out));
    }

    private static void print(Fabric fabric, boolean brief, Page out) {
        if (fabric.adapters.isEmpty()) {
            out.println("no host bus adapters");
        }
        fabric.adapters.forEach(adapter -> HbaTree.of(adapter, brief).print(out));
    }
}
