package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import java.time.Instant;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Consumer;

/** What a host is made of at one time, and its counters. */
public final class Snapshot {
    /** Properties that name or place an instance, or tell of another. */
    private static final Set<String> NOT_COMPARED = Set.of(
        "antecedent", "dependent", "deviceID", "systemName", "systemCreationClassName", "creationClassName", "caption",
        "description", "elementName", "portNumber");

    /** When the description was recorded; null when it does not say. */
    final Instant recordedAt;
    /** By the command that asks, by subject, by property. */
    final Map<String, Map<String, Map<String, Object>>> sections = new LinkedHashMap<>();
    /** What the call of a section raised. */
    final Map<String, String> failures = new LinkedHashMap<>();
    final Map<String, SolarisDiskIOInformation> io = new LinkedHashMap<>();
    final Map<String, SolarisCpuUtilizationData> cpu = new LinkedHashMap<>();
    /** A port's statistics instance by its world-wide name. */
    final Map<String, TrInstance> ports = new LinkedHashMap<>();

    private final Library library;

    /**
     * Asks the host that answers now.
     *
     * @param library what is asked
     */
    public Snapshot(Library library) {
        this.library = library;
        recordedAt = library.recordedAt();
        ask("disks", this::addDisks);
        ask("partitions", this::addSlices);
        ask("logical-disks", this::addFileSystems);
        ask("hba", this::addFabric);
        ask("disk-io", found -> library.diskIo().forEach(counted -> io.put(counted.instanceName(), counted)));
        ask("cpu", found -> library.cpu().forEach(counted -> cpu.put(String.valueOf(counted.cpuId()), counted)));
    }

    private void ask(String command, Consumer<Map<String, Map<String, Object>>> section) {
        Map<String, Map<String, Object>> subjects = new LinkedHashMap<>();
        try {
            section.accept(subjects);
        } catch (RuntimeException failed) {
            failures.put(command, Objects.toString(failed.getMessage()));
        }
        sections.put(command, subjects);
    }

    private void addDisks(Map<String, Map<String, Object>> found) {
        library.disks().forEach(drive -> add(found, "disk " + drive.get(SolarisDiskDriveProvider.name),
                                             properties(drive, SolarisDiskDriveProvider.name)));
    }

    private void addSlices(Map<String, Map<String, Object>> found) {
        library.partitions().forEach(slice -> add(
            found, "slice " + slice.get(SolarisDiskPartitionProvider.name),
            properties(slice, SolarisDiskPartitionProvider.name, SolarisDiskPartitionProvider.diskName)));
    }

    /** How much of a file system is used is a counter; how large it is, is not. */
    private void addFileSystems(Map<String, Map<String, Object>> found) {
        library.logicalDisks().stream().map(library::withSizes).forEach(disk -> {
            Map<String, Object> values = new LinkedHashMap<>();
            values.put("device", disk.device());
            values.put("fileSystemType", disk.fileSystemType());
            FileSystemUse use = new FileSystemUse(disk);
            values.put("totalBytes", use.isKnown() ? disk.totalBytes() : null);
            add(found, "file system " + disk.mountPoint(), values);
        });
    }

    private void addFabric(Map<String, Map<String, Object>> found) {
        Fabric fabric = library.fabric();
        fabric.adapters.forEach(adapter -> add(
            found, named("adapter ", adapter.instance, HostBusAdapterProvider.name, adapter.place()),
            properties(adapter.instance, HostBusAdapterProvider.name)));
        fabric.ports().forEach(port -> {
            String subject = add(found, name(port), properties(port.instance, HbaPortProvider.permanentAddress));
            if (port.statistics != null) {
                ports.put(subject, port.statistics);
            }
        });
        fabric.remotePorts().forEach(remote -> add(
            found, name(remote) + " at " + name(remote.port),
            properties(remote.instance, HbaPortProvider.permanentAddress)));
        Paths paths = new Paths(fabric);
        paths.units.forEach(unit -> add(found, "logical unit " + unit.place(), Map.of()));
        paths.units.forEach(unit -> unit.paths.forEach(path -> {
            Map<String, Object> values = new LinkedHashMap<>();
            values.put("osDeviceName", path.osDeviceName);
            values.put("scsiBus", path.scsiBus);
            values.put("targetId", path.targetId);
            values.put("scsiLun", path.scsiLun);
            add(found, "path to " + unit.place() + " from " + name(path.remote.port) + " over " + name(path.remote),
                values);
        }));
    }

    private static String name(Fabric.Port port) {
        return named("port ", port.instance, HbaPortProvider.permanentAddress, port.place());
    }

    private static String name(Fabric.RemotePort remote) {
        return named("remote port ", remote.instance, HbaPortProvider.permanentAddress, remote.place());
    }

    /** A world-wide name stays when the thing moves; without one, its place has to do. */
    private static String named(String kind, TrInstance instance, TrProperty property, String place) {
        String name = Instances.name(instance, property);
        return name.isEmpty() ? place : kind + name;
    }

    /** Under its subject, or the first "SUBJECT (2)" that is free. Answers which. */
    private static String add(Map<String, Map<String, Object>> found, String subject, Map<String, Object> values) {
        String free = subject;
        for (int i = 2; found.containsKey(free); i++) {
            free = subject + " (" + i + ")";
        }
        found.put(free, values);
        return free;
    }

    private static Map<String, Object> properties(TrInstance instance, TrProperty... identity) {
        Map<String, Object> values = new LinkedHashMap<>();
        for (TrProperty property : instance == null ? List.<TrProperty>of() : instance.getTrClass().getProperties()) {
            Object value = instance.get(property);
            if (value != null && !NOT_COMPARED.contains(property.getName())
                && !Arrays.asList(identity).contains(property)) {
                values.put(property.getName(), value instanceof Object[] ? Arrays.asList((Object[]) value) : value);
            }
        }
        return values;
    }
}
