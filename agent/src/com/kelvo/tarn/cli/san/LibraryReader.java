package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import java.math.BigInteger;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** Asks the library, as the commands do that are about one host; only the thread that has made it may use it. */
public final class LibraryReader implements HostReader {
    private static final BigInteger MOST = BigInteger.valueOf(Long.MAX_VALUE);
    private static final int AREA_AND_PORT = 16;
    /** How many hexadecimal digits an address has. */
    private static final int ADDRESS = 6;

    private final LibraryLog log = LibraryLog.ofThisThread();
    private final Library library = new Library(log);

    @Override
    public HostFacts read(byte[] text, String name) {
        library.load(text, name);
        Asked asked = new Asked(library, List.of());
        asked.requireAnswer("hba"); // without it, paths would seem to have vanished
        HostFacts facts = new HostFacts(
            asked.host, asked.computerSystem == null ? "" : asked.computerSystem.platform().strip(), asked.recordedAt);
        asked.fabric.adapters.forEach(adapter -> addAdapter(facts, adapter));
        asked.fabric.ports().forEach(port -> addPort(facts, port));
        addUnits(facts, asked);
        addSights(facts, asked.fabric);
        for (Check.Finding finding : Check.of(asked, null, new CheckRules()).findings) {
            facts.add(HostTable.FINDING, finding.severity, finding.code, finding.subject);
        }
        log.take();
        return facts;
    }

    private static void addAdapter(HostFacts facts, Fabric.Adapter adapter) {
        TrInstance told = adapter.instance;
        facts.add(HostTable.ADAPTER, adapter.index, text(told, HostBusAdapterProvider.model),
                  text(told, HostBusAdapterProvider.firmwareVersion), text(told, HostBusAdapterProvider.driverVersion),
                  Instances.name(told, HostBusAdapterProvider.name));
    }

    private static String text(TrInstance instance, com.kelvo.tarn.TrProperty property) {
        return instance == null ? "" : Instances.text(instance, property);
    }

    private static void addPort(HostFacts facts, Fabric.Port port) {
        long speed = port.instance == null ? 0 : Instances.number(port.instance, HbaPortProvider.speed).longValue();
        facts.add(HostTable.PORT, port.adapter.index, port.index, wwn(port.instance), port.fabric(),
                  address(port.instance), domain(port.instance), state(port.instance), speed <= 1 ? null : speed);
    }

    private static String wwn(TrInstance port) {
        return Instances.name(port, HbaPortProvider.permanentAddress);
    }

    private static long id(TrInstance port) {
        return port == null ? 0 : Instances.number(port, HbaPortProvider.portFcId).longValue();
    }

    private static String address(TrInstance port) {
        String digits = Long.toHexString(id(port));
        return id(port) == 0 ? "" : "0".repeat(Math.max(0, ADDRESS - digits.length())) + digits;
    }

    private static int domain(TrInstance port) {
        return (int) (id(port) >> AREA_AND_PORT) & 0xff;
    }

    private static String state(TrInstance port) {
        return port == null ? "" : PortWords.of(port, HbaPortProvider.portState);
    }

    /** The far end of paths, which has many of them. */
    private static final class FarEnd {
        private final List<Object[]> paths;
        /** Those at either end of its paths, by fabric and domain. */
        private final List<String> switches;

        private FarEnd(HostFacts facts, Fabric.RemotePort remote) {
            int domain = domain(remote.instance);
            paths = facts.alike(
                HostTable.PATH, remote.port.adapter.index, remote.port.index, wwn(remote.instance),
                LogicalUnit.nodeOf(remote), address(remote.instance), domain, state(remote.instance));
            String fabric = remote.port.fabric();
            switches = fabric.isEmpty() ? List.of()
                : Stream.of(domain(remote.port.instance), domain).distinct().filter(each -> each != 0)
                    .map(each -> fabric + "/" + each).collect(Collectors.toList());
        }
    }

    /** A volume that several nodes present, or one node under several numbers, is one unit. */
    private static void addUnits(HostFacts facts, Asked asked) {
        Map<Fabric.RemotePort, FarEnd> farEnds = asked.fabric.remotePorts().collect(
            Collectors.toMap(remote -> remote, remote -> new FarEnd(facts, remote)));
        Map<String, List<LogicalUnit.Path>> online = new LinkedHashMap<>();
        Map<String, String> mounted = new LinkedHashMap<>();
        Map<String, Identity> volumes = asked.identities().stream().filter(each -> each.designator != null)
            .collect(Collectors.toMap(each -> each.designator, each -> each, (one, other) -> one));
        for (LogicalUnit unit : asked.paths.units) {
            Identity volume = volumes.get(unit.designator);
            String identity = volume == null ? unit.place() : volume.designator;
            Set<String> nodes = facts.units.computeIfAbsent(identity, added -> volume == null
                ? new HostFacts.Unit(true, null, null, unit.sizeBytes)
                : new HostFacts.Unit(false, volume.vendor, volume.product,
                                     unit.sizeBytes == null ? volume.sizeBytes : unit.sizeBytes)).nodes;
            if (!unit.node.isEmpty()) {
                nodes.add(unit.node);
            }
            unit.mounts.forEach(mountPoint -> mounted.put(mountPoint, identity));
            online.computeIfAbsent(identity, added -> new ArrayList<>()).addAll(unit.online());
            for (LogicalUnit.Path path : unit.paths) {
                farEnds.get(path.remote).paths.add(new Object[] {identity, unit.lun.longValue(), path.disk});
            }
        }
        addReach(facts, online, farEnds);
        asked.fileSystems.forEach((mountPoint, use) -> facts.add(
            HostTable.MOUNT, mountPoint, asked.diskAt(mountPoint), mounted.get(mountPoint),
            bytes(use, FileSystemUse::total), bytes(use, FileSystemUse::available)));
    }

    private static Long bytes(FileSystemUse use, Function<FileSystemUse, BigInteger> size) {
        return use == null ? null : size.apply(use).min(MOST).longValue();
    }

    /** Units that the same nodes present over the same ports are reached alike, and most are. */
    private static void addReach(HostFacts facts, Map<String, List<LogicalUnit.Path>> online,
                                 Map<Fabric.RemotePort, FarEnd> farEnds) {
        Map<List<Object>, List<Object[]>> alike = new HashMap<>();
        online.forEach((identity, paths) -> {
            HostFacts.Unit unit = facts.units.get(identity);
            List<Object> through = new ArrayList<>(unit.nodes);
            for (LogicalUnit.Path path : paths) {
                through.add(path.remote);
            }
            alike.computeIfAbsent(through, added -> reach(facts, unit, paths, farEnds))
                .add(new Object[] {identity, unit.sizeBytes});
        });
    }

    private static List<Object[]> reach(HostFacts facts, HostFacts.Unit unit, List<LogicalUnit.Path> paths,
                                        Map<Fabric.RemotePort, FarEnd> farEnds) {
        Set<String> ends = new HashSet<>();
        Set<Integer> adapters = new HashSet<>();
        Set<String> fabrics = new HashSet<>();
        Set<String> arrayPorts = new HashSet<>();
        Map<String, Integer> switches = new TreeMap<>();
        for (LogicalUnit.Path path : paths) {
            ends.add(path.ends());
            adapters.add(path.adapter);
            fabrics.add(path.fabric);
            arrayPorts.add(path.far());
            for (String name : farEnds.get(path.remote).switches) {
                switches.merge(name, 1, Integer::sum);
            }
        }
        List<String> shared = switches.keySet().stream().filter(name -> switches.get(name) == paths.size())
            .collect(Collectors.toList());
        String oneFabric = only(fabrics);
        return facts.alike(
            HostTable.REACH, ends.size(), adapters.size(), fabrics.size() - (fabrics.contains("") ? 1 : 0),
            switches.size(), arrayPorts.size(), "".equals(oneFabric) ? null : oneFabric,
            shared.isEmpty() ? null : shared.get(0), shared.size() < 2 ? null : shared.get(1), only(arrayPorts),
            String.join(" ", unit.nodes));
    }

    private static String only(Set<String> names) {
        return names.size() == 1 ? names.iterator().next() : null;
    }

    /** A remote port as all ports of the host see it together that are in one fabric. */
    private static void addSights(HostFacts facts, Fabric fabric) {
        Map<List<String>, List<Fabric.RemotePort>> seen = fabric.remotePorts()
            .filter(remote -> !wwn(remote.instance).isEmpty())
            .collect(Collectors.groupingBy(remote -> List.of(remote.port.fabric(), wwn(remote.instance)),
                                           LinkedHashMap::new, Collectors.toList()));
        seen.forEach((name, remotes) -> {
            TrInstance first = remotes.get(0).instance;
            Set<Object> units = new HashSet<>();
            remotes.forEach(remote -> units.addAll(remote.exportedLuns()));
            facts.add(HostTable.SIGHT, name.get(0), name.get(1), Instances.name(first, HbaPortProvider.nodeWWN),
                      address(first), domain(first), state(first),
                      (int) remotes.stream().map(remote -> remote.port).distinct().count(), units.size());
        });
    }
}
