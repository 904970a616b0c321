package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.PortError;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.HbaOptions;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.HbaTree;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code hba}: one call of {@code fillHbaCache}. */
@Command(name = "hba", description = "The Fibre Channel adapters with their ports, remote ports and logical units.")
public final class HbaCommand extends TableCommand {
    @Mixin
    private HbaOptions options;

    @Option(names = "--baseline", paramLabel = "FILE", description = "A recording made when all was well: error "
            + "counters that rose since are marked.")
    private String baseline;

    @Override
    public Answer ask() {
        HbaOptions names = options.and(tarn().hba());
        HbaCache.Hba[] adapters = names.fill(library());
        Fabric seen = tarn().json() ? null : names.fabric(library(), adapters, List.of());
        Fabric before = baseline == null ? null : tarn().at(baseline, spec().commandLine(), library()::fabric);
        return Answer.table(adapters, () -> ports(seen)).shownAs(out -> print(seen, new HbaTree(false, before), out))
            .summarizedAs(out -> print(seen, new HbaTree(true, before), out))
            .withLog(line -> line.subject().isEmpty()); // not of the disks that the units are named after
    }

    /** A row for each port; of what cannot be read, as much as there is. */
    private static Table<Fabric.Port> ports(Fabric fabric) {
        Table<Fabric.Port> table = new Table<>(fabric.ports())
            .number("Adapter", port -> port.adapter.index).number("Port", port -> port.index)
            .text("Manufacturer", port -> Instances.name(port.adapter.instance, HostBusAdapterProvider.manufacturer))
            .text("Model", port -> Instances.name(port.adapter.instance, HostBusAdapterProvider.model))
            .text("Firmware", port -> Instances.name(port.adapter.instance, HostBusAdapterProvider.firmwareVersion))
            .text("Port WWN", port -> Instances.name(port.instance, HbaPortProvider.permanentAddress))
            .text("State", port -> words(port, HbaPortProvider.portState))
            .text("Speed", port -> words(port, HbaPortProvider.speed))
            .text("Type", port -> words(port, HbaPortProvider.portType))
            .text("Address", port -> words(port, HbaPortProvider.portFcId))
            .text("Fabric", port -> Instances.name(port.instance, HbaPortProvider.fabricName))
            .number("Remote ports", port -> port.remotePorts.size())
            .number("Frames sent", port -> counter(port, FCPortStatisticsProvider.packetsTransmitted))
            .number("Frames received", port -> counter(port, FCPortStatisticsProvider.packetsReceived));
        for (PortError error : PortError.values()) {
            table.number(PortWords.errors(error),
                         port -> port.statistics == null ? null : error.in(port.statistics).text());
        }
        return table;
    }

    private static String words(Fabric.Port port, TrProperty property) {
        return port.instance == null ? "" : PortWords.of(port.instance, property);
    }

    private static String counter(Fabric.Port port, TrProperty property) {
        return port.statistics == null ? null : Counter.of(port.statistics, property).text();
    }

    private static void print(Fabric fabric, HbaTree tree, Page out) {
        if (fabric.adapters.isEmpty()) {
            out.println("no host bus adapters");
        }
        fabric.adapters.forEach(adapter -> tree.of(adapter).print(out));
    }
}
