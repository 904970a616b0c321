package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.hba.HbaCache;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

/** {@code hba}: one call of {@code fillHbaCache}. */
@Command(name = "hba", description = "The Fibre Channel adapters with their ports, remote ports and logical units.")
public final class HbaCommand extends Inquiry<HbaCache.Hba[]> {
    @Mixin
    private HbaOptions options;

    @Override
    protected HbaCache.Hba[] ask() {
        return options.or(tarn().hba()).fill();
    }

    @Override
    protected void show(HbaCache.Hba[] adapters, Page out) {
        Fabric fabric = new Fabric(adapters);
        print(fabric, false, out);
        options.or(tarn().hba()).explainDeviceNames(fabric, out);
    }

    @Override
    protected void summarize(HbaCache.Hba[] adapters, Page out) {
        print(new Fabric(adapters), true, out);
    }

    @Override
    protected boolean takesHbaOptions() {
        return true;
    }

    /** Takes over choices made for the report that this is a section of. */
    void choose(HbaOptions choices) {
        options = choices;
    }

    private static void print(Fabric fabric, boolean brief, Page out) {
        if (fabric.adapters.isEmpty()) {
            out.println("no host bus adapters");
        }
        fabric.adapters.forEach(adapter -> HbaTree.of(adapter, brief).print(out));
    }
}
