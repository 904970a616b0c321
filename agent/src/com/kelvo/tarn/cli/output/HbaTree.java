package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.PortError;
import com.kelvo.tarn.cli.answers.PortStates;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import com.kelvo.tarn.providers.hba.TargetMappingProvider;
import java.util.Comparator;
import java.util.Locale;
import java.util.Objects;
import java.util.Set;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import javax.wbem.cim.UnsignedInt;

/** Draws an adapter with all that it sees. Two exclamation marks stand before what is not healthy. */
public final class HbaTree {
    private final boolean brief;
    private final Fabric baseline;

    /**
     * Chooses how adapters are drawn.
     *
     * @param brief whether a port's remote ports are counted, and only those in trouble drawn
     * @param baseline the same host when all was well: error counters that rose since are marked; null: none is
     */
    public HbaTree(boolean brief, Fabric baseline) {
        this.brief = brief;
        this.baseline = baseline;
    }

    /**
     * {@return an adapter with all that it sees}
     *
     * @param adapter what is drawn
     */
    public Tree of(Fabric.Adapter adapter) {
        Tree tree = new Tree(label("Adapter", adapter.index, adapter.instance, HbaTree::adapter));
        adapter.ports.forEach(port -> tree.add(port(port)));
        return tree;
    }

    private Tree port(Fabric.Port port) {
        String label = label("Port", port.index, port.instance, found -> port(found, ""));
        if (!port.recorded) {
            return new Tree(label);
        }
        long units = port.remotePorts.stream().mapToInt(remote -> remote.mappings.size()).sum();
        Tree tree = new Tree(!brief ? label
            : join(label, "remote ports: " + port.remotePorts.size(), "LUNs: " + units));
        if (!brief) {
            tree.add(new Tree(counters(port)));
        }
        for (Fabric.RemotePort remote : port.remotePorts) {
            Tree branch = new Tree(label("Remote port", remote.index, remote.instance, HbaTree::remotePort));
            if (!brief) {
                for (int i = 0; i < remote.mappings.size(); i++) {
                    branch.add(new Tree(unit(remote, i)));
                }
            }
            if (!brief || remote.instance == null || !PortStates.isOk(remote.instance)) {
                tree.add(branch);
            }
        }
        return tree;
    }

    private static String label(String thing, int index, TrInstance instance, Function<TrInstance, String> facts) {
        return instance == null ? unreadable(thing.toLowerCase(Locale.ROOT) + " " + index)
            : Stream.of(thing + " " + index, facts.apply(instance)).filter(part -> !part.isEmpty())
                  .collect(Collectors.joining(": "));
    }

    private static String unreadable(String thing) {
        return Page.TROUBLE + thing + " not readable (see the log)";
    }

    private static String adapter(TrInstance adapter) {
        return join(
            labelled("", adapter, HostBusAdapterProvider.manufacturer),
            labelled("", adapter, HostBusAdapterProvider.model),
            labelled("serial ", adapter, HostBusAdapterProvider.serialNumber),
            labelled("firmware ", adapter, HostBusAdapterProvider.firmwareVersion),
            labelled("driver ", adapter, HostBusAdapterProvider.driverVersion),
            labelled("WWN ", adapter, HostBusAdapterProvider.name));
    }

    /** With the node's name, which the ports of one array have in common. */
    private static String remotePort(TrInstance port) {
        return port(port, labelled("node ", port, HbaPortProvider.nodeWWN));
    }

    private static String port(TrInstance port, String node) {
        String state = PortWords.of(port, HbaPortProvider.portState);
        String fcId = PortWords.of(port, HbaPortProvider.portFcId);
        return join(
            PortStates.isOk(port) ? state : Page.TROUBLE + state.toUpperCase(Locale.ROOT),
            PortWords.of(port, HbaPortProvider.speed),
            PortWords.of(port, HbaPortProvider.portType),
            labelled("WWN ", port, HbaPortProvider.permanentAddress),
            node,
            fcId.isEmpty() ? "" : "FC ID " + fcId,
            labelled("fabric ", port, HbaPortProvider.fabricName),
            labelled("", port, HbaPortProvider.name));
    }

    /** The frames, and whatever errors there were; those that are new stand first. */
    private String counters(Fabric.Port port) {
        TrInstance statistics = port.statistics;
        if (statistics == null) {
            return unreadable("counters");
        }
        Set<PortError> risen = baseline == null ? Set.of() : PortError.risen(baseline, port).keySet();
        String errors = Stream.of(PortError.values()).sorted(Comparator.comparing(error -> !risen.contains(error)))
            .filter(error -> error.in(statistics).isKept() && error.in(statistics).value().signum() != 0)
            .map(error -> (risen.contains(error) ? Page.TROUBLE : "") + PortWords.errors(error) + " "
                              + error.in(statistics).text())
            .collect(Collectors.joining(", "));
        Object[] frames = Stream
            .of(FCPortStatisticsProvider.packetsTransmitted, FCPortStatisticsProvider.packetsReceived)
            .map(counter -> Objects.requireNonNullElse(Counter.of(statistics, counter).text(), "-")).toArray();
        return String.format(Locale.ROOT, "Frames: %s sent, %s received", frames)
            + (errors.isEmpty() ? "" : "; " + errors);
    }

    private String unit(Fabric.RemotePort remote, int place) {
        TrInstance mapping = remote.mappings.get(place);
        if (mapping == null) {
            return unreadable("LUN");
        }
        UnsignedInt lun = Instances.number(mapping, TargetMappingProvider.scsiLun);
        UnsignedInt exported = Instances.number(mapping, TargetMappingProvider.exportedLUN);
        return join(
            "LUN " + lun,
            remote.deviceName(place),
            "bus " + Instances.number(mapping, TargetMappingProvider.scsiBus),
            "target " + Instances.number(mapping, TargetMappingProvider.targetId),
            exported.longValue() == lun.longValue() ? "" : "exported as LUN " + exported);
    }

    /** The property's value after the label; nothing when it has none. */
    private static String labelled(String label, TrInstance instance, TrProperty property) {
        String value = Instances.name(instance, property);
        return value.isEmpty() ? "" : label + value;
    }

    private static String join(String... parts) {
        return Stream.of(parts).filter(part -> !part.isEmpty()).collect(Collectors.joining(", "));
    }
}
