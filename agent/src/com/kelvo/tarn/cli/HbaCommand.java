package com.kelvo.tarn.cli;

import com.kelvo.tarn.providers.hba.HbaCache;
import java.io.PrintWriter;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

@Command(name = "hba", description = "The Fibre Channel adapters with their ports, remote ports and logical units.")
final class HbaCommand extends Inquiry<HbaCache.Hba[]> {
    @Mixin
    private HbaOptions options;

    @Override
    protected HbaCache.Hba[] ask() {
        HbaOptions choices = options.or(tarn().hba());
        return choices.cache().fillHbaCache(choices.classNames());
    }

    @Override
    protected void show(HbaCache.Hba[] adapters, PrintWriter out) {
        print(adapters, false, out);
        if (!options.or(tarn().hba()).any() && Stream.of(adapters).anyMatch(HbaTree::showsDeviceNames)) {
            out.println("Device names are made of bus, target and LUN; --leadville shows those of /dev/rdsk");
        }
    }

    @Override
    protected void summarize(HbaCache.Hba[] adapters, PrintWriter out) {
        print(adapters, true, out);
    }

    @Override
    protected boolean takesHbaOptions() {
        return true;
    }

    /** Takes over choices made for the report that this is a section of. */
    void choose(HbaOptions choices) {
        options = choices;
    }

    private static void print(HbaCache.Hba[] adapters, boolean brief, PrintWriter out) {
        if (adapters.length == 0) {
            out.println("no host bus adapters");
        }
        for (int i = 0; i < adapters.length; i++) {
            HbaTree.of(i, adapters[i], brief).print(out);
        }
    }
}
