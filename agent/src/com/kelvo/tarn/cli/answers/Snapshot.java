package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.HostBusAdapterProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import java.time.Instant;
import java.util.Arrays;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Consumer;

/** What a host is made of at one time, and its counters. */
public final class Snapshot {
    private static final String HOST = "host";

    /** Properties that name or place an instance, or tell of another. */
    private static final Set<String> NOT_COMPARED = Set.of(
        "antecedent", "dependent", "deviceID", "systemName", "systemCreationClassName", "creationClassName", "caption",
        "description", "elementName", "portNumber");

    private String hostName = "";
    /** When the description was recorded; null when it does not say. */
    public final Instant recordedAt;
    /** What a check finds. */
    final List<Check.Finding> findings;
    /** By the command that asks, by subject, by property. */
    final Map<String, Map<String, Map<String, Object>>> sections = new LinkedHashMap<>();
    /** What the call of a section raised. */
    final Map<String, String> failures = new LinkedHashMap<>();
    /** How much of a file system is used, in per cent, by mount point; null when that is not told. */
    final Map<String, Double> usage = new LinkedHashMap<>();
    /** By the disk's name and its instance: under another of either, counters are another device's. */
    final Map<List<String>, SolarisDiskIOInformation> io = new LinkedHashMap<>();
    final Map<String, SolarisCpuUtilizationData> cpu = new LinkedHashMap<>();
    /** A port's statistics instance by its world-wide name. */
    final Map<String, TrInstance> ports = new LinkedHashMap<>();

    private final Library library;
    /** The last number that a subject was given, when several have the same. */
    private final Map<String, Integer> alike = new HashMap<>();

    /**
     * Asks the host that answers now.
     *
     * @param library what is asked
     */
    public Snapshot(Library library) {
        this.library = library;
        Asked asked = new Asked(library, List.of());
        asked.identities(); // where they cannot be told, that is to be said
        asked.warnOfMounts();
        recordedAt = asked.recordedAt;
        failures.putAll(asked.failures);
        if (failures.containsKey(Library.MOUNTS)) { // else they would seem to have vanished
            failures.putIfAbsent("logical-disks", failures.remove(Library.MOUNTS));
        }
        ask("computer-system", this::addComputerSystem);
        ask("operating-system", this::addOperatingSystem);
        ask("processors", found -> addProcessors(asked, found));
        ask("disks", found -> addDisks(asked, found));
        ask("partitions", this::addSlices);
        ask("logical-disks", found -> addFileSystems(asked, found));
        ask("hba", found -> addFabric(asked, found));
        ask("disk-io", found -> asked.io.forEach(
            counted -> io.put(List.of(counted.diskName(), counted.instanceName()), counted)));
        ask("cpu", found -> library.cpu().forEach(counted -> cpu.put(String.valueOf(counted.cpuId()), counted)));
        findings = Check.of(asked, null, new CheckRules()).findings;
    }

    /** {@return what the host calls itself; blank when it does not say} */
    public String hostName() {
        return hostName;
    }

    /**
     * {@return whether both call themselves alike, as far as they say}
     *
     * @param other the same host, or another
     */
    public boolean isSameHost(Snapshot other) {
        return hostName.isBlank() || other.hostName.isBlank() || hostName.equals(other.hostName);
    }

    private void ask(String command, Consumer<Map<String, Map<String, Object>>> section) {
        Map<String, Map<String, Object>> subjects = new LinkedHashMap<>();
        try {
            section.accept(subjects);
        } catch (RuntimeException | StackOverflowError | OutOfMemoryError failed) {
            failures.put(command, Objects.requireNonNullElse(failed.getMessage(), failed.toString()));
        }
        sections.put(command, subjects);
    }

    private void addComputerSystem(Map<String, Map<String, Object>> found) {
        var system = library.computerSystem();
        hostName = system.hostName();
        Map<String, Object> values = new LinkedHashMap<>();
        values.put("hostName", system.hostName());
        values.put("version", system.version());
        values.put("platform", system.platform());
        add(found, HOST, values);
    }

    private void addOperatingSystem(Map<String, Map<String, Object>> found) {
        var system = library.operatingSystem();
        Map<String, Object> values = new LinkedHashMap<>();
        values.put("hostName", system.hostName());
        values.put("version", system.version());
        values.put("totalPhysicalKB", system.totalPhysicalKB() == 0 ? null : system.totalPhysicalKB());
        add(found, HOST, values);
    }

    private void addProcessors(Asked asked, Map<String, Map<String, Object>> found) {
        asked.processors.forEach(processor -> {
            Map<String, Object> values = new LinkedHashMap<>();
            values.put("state", processor.state());
            values.put("processorType", processor.processorType());
            values.put("clockMHz", processor.clockMHz());
            add(found, "processor " + processor.processorId(), values);
        });
    }

    private void addDisks(Asked asked, Map<String, Map<String, Object>> found) {
        asked.drives.forEach(drive -> {
            Map<String, Object> values = properties(drive, SolarisDiskDriveProvider.name);
            String name = Instances.text(drive, SolarisDiskDriveProvider.name);
            values.putAll(properties(asked.disks.identity(List.of(name))));
            add(found, "disk " + name, values);
        });
    }

    /** What of it is told. */
    private static Map<String, Object> properties(Identity identity) {
        Map<String, Object> values = new LinkedHashMap<>();
        if (identity != null) {
            values.put("vendor", identity.vendor);
            values.put("product", identity.product);
            values.put("revision", identity.revision);
            values.put("serial", identity.serial);
            values.put("designator", identity.designator);
        }
        values.values().removeIf(Objects::isNull);
        return values;
    }

    private void addSlices(Map<String, Map<String, Object>> found) {
        library.partitions().forEach(slice -> add(
            found, "slice " + slice.get(SolarisDiskPartitionProvider.name),
            properties(slice, SolarisDiskPartitionProvider.name, SolarisDiskPartitionProvider.diskName)));
    }

    /** How much of a file system is used is a counter; how large it is, is not. */
    private void addFileSystems(Asked asked, Map<String, Map<String, Object>> found) {
        asked.disks.mounted.forEach(disk -> {
            Map<String, Object> values = new LinkedHashMap<>();
            values.put("device", disk.device);
            values.put("fileSystemType", disk.fileSystemType);
            FileSystemUse use = asked.fileSystems.get(disk.mountPoint);
            values.put("totalBytes", use == null ? null : use.total().longValue());
            usage.put(disk.mountPoint, use == null ? null : use.usedPercent());
            add(found, "file system " + disk.mountPoint, values);
        });
    }

    private void addFabric(Asked asked, Map<String, Map<String, Object>> found) {
        Fabric fabric = asked.fabric;
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
        asked.paths.units.forEach(unit -> add(found, "logical unit " + unit.place(),
                                                 properties(unit.identity)));
        asked.paths.units.forEach(unit -> unit.paths.forEach(path -> {
            Map<String, Object> values = new LinkedHashMap<>();
            values.put("osDeviceName", path.osDeviceName);
            values.put("scsiBus", path.scsiBus);
            values.put("targetId", path.targetId);
            values.put("scsiLun", path.scsiLun);
            found.putIfAbsent( // between the same ports it is the same path, however often it is listed
                "path to " + unit.place() + " from " + name(path.remote.port) + " over " + name(path.remote), values);
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
    private String add(Map<String, Map<String, Object>> found, String subject, Map<String, Object> values) {
        String free = subject;
        while (found.containsKey(free)) {
            free = subject + " (" + alike.merge(subject, 2, (last, first) -> last + 1) + ")";
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
