package com.kelvo.tarn.cli;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import com.kelvo.tarn.providers.hba.TargetMappingProvider;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import javax.wbem.cim.UnsignedInt;
import javax.wbem.cim.UnsignedInt16;

/** Draws an adapter with all that it sees. Two exclamation marks stand before what is not healthy. */
final class HbaTree {
    private static final String trouble = "!! ";

    private static final Map<UnsignedInt, String> states = Map.of(
        HbaPortProvider.PORT_STATE_ONLINE, "online", HbaPortProvider.PORT_STATE_OFFLINE, "offline",
        HbaPortProvider.PORT_STATE_BYPASSED, "bypassed", HbaPortProvider.PORT_STATE_DIAGNOSTICS, "diagnostics",
        HbaPortProvider.PORT_STATE_LINK_DOWN, "link down", HbaPortProvider.PORT_STATE_ERROR, "error",
        HbaPortProvider.PORT_STATE_LOOPBACK, "loopback");

    private static final Set<UnsignedInt> troubledStatuses =
        Set.of(HbaPortProvider.OPERATIONAL_STATUS_IN_SERVICE, HbaPortProvider.OPERATIONAL_STATUS_ERROR,
               HbaPortProvider.OPERATIONAL_STATUS_UNKNOWN);

    private static final Map<UnsignedInt, String> types = Map.of(
        HbaPortProvider.PORT_TYPE_N, "N port", HbaPortProvider.PORT_TYPE_NL, "NL port",
        HbaPortProvider.PORT_TYPE_E, "E port", HbaPortProvider.PORT_TYPE_F, "F port",
        HbaPortProvider.PORT_TYPE_FL, "FL port");

    /** The name of the fabric where there is none, or where the adapter does not tell. */
    private static final String noFabric = "0".repeat(16);

    /** The HBA API's speeds, by the bits per second that the library makes of them. */
    private static final Map<Long, String> speeds =
        Map.of(1143535043L, "1 Gb/s", 2287070085L, "2 Gb/s", 11435350430L, "10 Gb/s");

    private static final List<Map.Entry<TrProperty, String>> errorCounters = List.of(
        Map.entry(FCPortStatisticsProvider.linkFailures, trouble + "link failures"),
        Map.entry(FCPortStatisticsProvider.crcErrors, trouble + "CRC errors"),
        Map.entry(FCPortStatisticsProvider.lossOfSyncCounter, "loss of sync"),
        Map.entry(FCPortStatisticsProvider.lossOfSignalCounter, "loss of signal"),
        Map.entry(FCPortStatisticsProvider.primitiveSeqProtocolErrCount, "sequence protocol errors"),
        Map.entry(FCPortStatisticsProvider.invalidTransmissionWords, "invalid words"),
        Map.entry(FCPortStatisticsProvider.errorFrames, "error frames"),
        Map.entry(FCPortStatisticsProvider.dumpedFrames, "dumped frames"));

    private HbaTree() {
    }

    /** In brief, a port's remote ports are counted, and only those in trouble are drawn. */
    static Tree of(int index, HbaCache.Hba adapter, boolean brief) {
        Tree tree = new Tree(label("Adapter", index, adapter == null ? null : adapter.instance(), HbaTree::adapter));
        if (adapter != null) {
            for (int i = 0; i < adapter.ports().length; i++) {
                tree.add(port(i, adapter.ports()[i], brief));
            }
        }
        return tree;
    }

    /** Whether a logical unit is seen through the adapter, under whatever name. */
    static boolean showsDeviceNames(HbaCache.Hba adapter) {
        return adapter != null
            && Stream.of(adapter.ports()).anyMatch(port -> port != null && units(port.discoveredPorts()) > 0);
    }

    private static Tree port(int index, HbaCache.HbaPort port, boolean brief) {
        String label = label("Port", index, port == null ? null : port.instance(), HbaTree::port);
        if (port == null) {
            return new Tree(label);
        }
        HbaCache.HbaDiscoveredPort[] remotePorts = port.discoveredPorts();
        Tree tree = new Tree(!brief ? label
            : join(label, "remote ports: " + remotePorts.length, "LUNs: " + units(remotePorts)));
        if (!brief) {
            tree.add(new Tree(counters(port.statistics())));
        }
        for (int i = 0; i < remotePorts.length; i++) {
            HbaCache.HbaDiscoveredPort remote = remotePorts[i];
            TrInstance instance = remote == null ? null : remote.instance();
            Tree branch = new Tree(label("Remote port", i, instance, HbaTree::port));
            if (!brief && remote != null) {
                Stream.of(remote.targetMappings()).map(HbaTree::unit).map(Tree::new).forEach(branch::add);
            }
            if (!brief || inTrouble(instance)) {
                tree.add(branch);
            }
        }
        return tree;
    }

    private static String label(String thing, int index, TrInstance instance, Function<TrInstance, String> facts) {
        return instance == null ? unreadable(thing.toLowerCase(Locale.ROOT) + " " + index)
            : thing + " " + index + ": " + facts.apply(instance);
    }

    private static String unreadable(String thing) {
        return trouble + thing + " not readable (see the log)";
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

    private static String port(TrInstance port) {
        String state = states.getOrDefault(number(port, HbaPortProvider.portState), "state unknown");
        long fcId = number(port, HbaPortProvider.portFcId).longValue();
        return join(
            inTrouble(port) ? trouble + state.toUpperCase(Locale.ROOT) : state,
            speeds.getOrDefault(number(port, HbaPortProvider.speed).longValue(), "speed unknown"),
            types.getOrDefault(number(port, HbaPortProvider.portType), ""),
            labelled("WWN ", port, HbaPortProvider.permanentAddress),
            fcId == 0 ? "" : String.format("FC ID 0x%06x", fcId),
            noFabric.equals(port.get(HbaPortProvider.fabricName)) ? ""
                : labelled("fabric ", port, HbaPortProvider.fabricName),
            labelled("", port, HbaPortProvider.name));
    }

    private static boolean inTrouble(TrInstance port) {
        return port == null || Stream.ofNullable((Object[]) port.get(HbaPortProvider.operationalStatus))
            .flatMap(Stream::of).anyMatch(troubledStatuses::contains);
    }

    private static int units(HbaCache.HbaDiscoveredPort[] remotePorts) {
        return Stream.of(remotePorts).filter(Objects::nonNull).mapToInt(remote -> remote.targetMappings().length).sum();
    }

    /** The frames, and whatever errors there were. */
    private static String counters(TrInstance statistics) {
        if (statistics == null) {
            return unreadable("counters");
        }
        Stream<String> frames = Stream.of(FCPortStatisticsProvider.packetsTransmitted,
                                          FCPortStatisticsProvider.packetsReceived)
            .map(counter -> isKept(statistics, counter) ? number(statistics, counter).toString() : "an unknown number");
        String errors = errorCounters.stream()
            .filter(counter -> number(statistics, counter.getKey()).longValue() != 0)
            .filter(counter -> isKept(statistics, counter.getKey()))
            .map(counter -> counter.getValue() + " " + number(statistics, counter.getKey()))
            .collect(Collectors.joining(", "));
        return String.format("Frames: %s sent, %s received", frames.toArray()) + (errors.isEmpty() ? "" : "; " + errors);
    }

    /** Adapters set all bits of a counter that they do not keep. */
    private static boolean isKept(TrInstance statistics, TrProperty counter) {
        return number(statistics, counter).longValue() != -1;
    }

    private static String unit(TrInstance mapping) {
        if (mapping == null) {
            return unreadable("LUN");
        }
        UnsignedInt lun = number(mapping, TargetMappingProvider.scsiLun);
        UnsignedInt exported = number(mapping, TargetMappingProvider.exportedLUN);
        return join(
            "LUN " + lun,
            labelled("", mapping, TargetMappingProvider.osDeviceName),
            "bus " + number(mapping, TargetMappingProvider.scsiBus),
            "target " + number(mapping, TargetMappingProvider.targetId),
            exported.longValue() == lun.longValue() ? "" : "exported as LUN " + exported);
    }

    /** The property's value after the label; nothing when it has none. */
    private static String labelled(String label, TrInstance instance, TrProperty property) {
        String value = Objects.toString(instance.get(property), "").strip();
        return value.isEmpty() ? "" : label + value;
    }

    /** A property that was not set counts as 0. */
    private static UnsignedInt number(TrInstance instance, TrProperty property) {
        return instance.get(property) == null ? new UnsignedInt16(0) : (UnsignedInt) instance.get(property);
    }

    private static String join(String... parts) {
        return Stream.of(parts).filter(part -> !part.isEmpty()).collect(Collectors.joining(", "));
    }
}
