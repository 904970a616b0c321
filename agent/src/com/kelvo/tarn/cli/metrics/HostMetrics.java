package com.kelvo.tarn.cli.metrics;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Asking;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.answers.DiskErrors;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.FileSystem;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.PayloadRates;
import com.kelvo.tarn.cli.answers.PortError;
import com.kelvo.tarn.cli.answers.PortStates;
import com.kelvo.tarn.inventory.DiskActivity;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.inventory.PortTraffic;
import com.kelvo.tarn.inventory.Sample;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisOperatingSystemProvider.SolarisOperatingSystem;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import java.math.BigDecimal;
import java.math.BigInteger;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Supplier;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** A host's states and counters, asked once each. */
public final class HostMetrics {
    private final Asked asked;
    /** What each disk does, by its instance; nothing where that cannot be told. */
    private final Map<String, DiskActivity> activity = new HashMap<>();
    private final Exposition out = new Exposition();

    private HostMetrics(Asked asked) {
        this.asked = asked;
    }

    /**
     * {@return all that is measured of a host} A section whose call fails is left out, and said to be down.
     *
     * @param library what is asked for what a check does not ask
     * @param asked what the host has answered to a check
     * @param check what that finds
     * @param asking how the library is asked
     * @param sampling reads what disks and ports do
     */
    public static Exposition of(Library library, Asked asked, Check check, Asking asking,
                                Supplier<Sample> sampling) {
        HostMetrics metrics = new HostMetrics(asked);
        metrics.section("computer-system", () -> metrics.add(Objects.requireNonNull(asked.computerSystem)));
        metrics.section("operating-system",
                        () -> metrics.add(asking.ask("operating-system", library::operatingSystem)));
        metrics.answered("logical-disks", () -> metrics.addFileSystems(false));
        metrics.answered("mounts", () -> metrics.addFileSystems(true));
        metrics.answered("processors", metrics::addProcessors);
        metrics.section("cpu", () -> asking.ask("cpu", library::cpu).forEach(metrics::add));
        metrics.section("activity", () -> metrics.add(metrics.sample(asking, sampling)));
        metrics.answered("disk-io", () -> asked.io.forEach(metrics::add));
        metrics.answered("disks", () -> { });
        metrics.answered("identities", metrics::addDisks);
        metrics.answered("hba", metrics::addFabric);
        metrics.addCheck(check);
        return metrics.out;
    }

    /** A section that a check has asked for. */
    private void answered(String name, Runnable adding) {
        section(name, () -> {
            asked.requireAnswer(name);
            adding.run();
        });
    }

    private void section(String name, Runnable call) {
        int up = 1;
        try {
            call.run();
        } catch (RuntimeException | LinkageError | StackOverflowError | OutOfMemoryError failed) {
            up = 0;
        }
        out.gauge("tarn_section_up", "Whether the library answered; its metrics are left out where it did not.")
            .sample(up, labels("section", name));
    }

    /** Where the adapters hang, a second call would hang in them too. */
    private Sample sample(Asking asking, Supplier<Sample> sampling) {
        if (asked.isSilent("hba")) {
            asked.requireAnswer("hba");
        }
        return asking.ask("activity", sampling);
    }

    /** What the library answers with blanks alone, the system has not told it. */
    private static void requireAnswer(String... texts) {
        if (Stream.of(texts).allMatch(String::isBlank)) {
            throw new IllegalStateException("the system tells nothing");
        }
    }

    private void add(SolarisComputerSystem system) {
        requireAnswer(system.hostName(), system.systemName(), system.version(), system.platform());
        out.gauge("tarn_host_info", "The host, always 1.")
            .sample(1, labels("hostname", system.hostName().strip(), "system", system.systemName().strip(),
                              "version", system.version().strip(), "platform", system.platform().strip(),
                              "serial", system.serialNumber().strip()));
    }

    private void add(SolarisOperatingSystem system) {
        requireAnswer(system.name());
        Exposition.Family memory = out.gauge("tarn_memory_bytes", "Memory and swap, as a whole and free.");
        addMemory(memory, "physical", system.totalPhysicalKB());
        addMemory(memory, "physical_free", system.freePhysicalKB());
        addMemory(memory, "swap", system.totalSwapKB());
        if (system.totalSwapKB() != 0) { // of which all may be taken
            memory.sample(kilobytes(system.freeSwapKB()), labels("kind", "swap_free"));
        }
    }

    /** No system has none of these: 0 is what it does not tell. */
    private static void addMemory(Exposition.Family memory, String kind, long kilobytes) {
        if (kilobytes != 0) {
            memory.sample(kilobytes(kilobytes), labels("kind", kind));
        }
    }

    /** What the check finds, and how old all this is. */
    private void addCheck(Check check) {
        long criticals = check.findings.stream().filter(Check.Finding::isCritical).count();
        Exposition.Family found = out.gauge("tarn_check_findings", "What the command check finds, by severity.");
        found.sample(criticals, labels("severity", "critical"));
        found.sample(check.findings.size() - criticals, labels("severity", "warning"));
        if (asked.recordedAt != null) {
            out.gauge("tarn_host_recorded_timestamp_seconds", "When the host that is told of was recorded.")
                .sample(asked.recordedAt.getEpochSecond(), "");
        }
    }

    /** The agent's, or the inventory's. One that would not tell its sizes, or is not mounted any more, has none. */
    private void addFileSystems(boolean ofInventory) {
        Exposition.Family sizes = out.gauge("tarn_filesystem_bytes", "The sizes of mounted file systems.");
        for (FileSystem disk : asked.sizedFileSystems) {
            if (disk.isOfInventory() == ofInventory && disk.isSized()) {
                FileSystemUse use = new FileSystemUse(disk);
                String labels = labels("mountpoint", disk.mountPoint, "device", disk.device, "fstype",
                                       disk.fileSystemType);
                sizes.sample(use.total(), with(labels, "kind", "total"));
                sizes.sample(use.free(), with(labels, "kind", "free"));
                sizes.sample(use.available(), with(labels, "kind", "available"));
            }
        }
    }

    private void addProcessors() {
        Exposition.Family online = out.gauge("tarn_processor_online", "Whether the processor is online.");
        asked.processors.forEach(
            data -> online.sample(data.state().equals("online") ? 1 : 0, labels("processor", data.processorId())));
    }

    private void add(SolarisCpuUtilizationData data) {
        Exposition.Family ticks = out.counter("tarn_cpu_ticks_total", "Clock ticks since boot; 32 bits, which wrap.");
        String labels = labels("processor", data.cpuId());
        ticks.sample(Counter.of32(data.userTicks()).value(), with(labels, "mode", "user"));
        ticks.sample(Counter.of32(data.kernelTicks()).value(), with(labels, "mode", "kernel"));
        ticks.sample(Counter.of32(data.waitTicks()).value(), with(labels, "mode", "wait"));
        ticks.sample(Counter.of32(data.idleTicks()).value(), with(labels, "mode", "idle"));
    }

    /** What was sampled counts: it is of the same time as all else of the disk. */
    private void add(SolarisDiskIOInformation io) {
        DiskActivity sampled = activity.get(io.instanceName());
        String labels = labels("disk", io.diskName(), "instance", io.instanceName());
        count(out.counter("tarn_disk_read_bytes_total", "Bytes read since boot."),
              new Counter(sampled == null ? io.bytesRead() : sampled.nread), labels);
        count(out.counter("tarn_disk_written_bytes_total", "Bytes written since boot."),
              new Counter(sampled == null ? io.bytesWritten() : sampled.nwritten), labels);
        Exposition.Family busy = out.counter("tarn_disk_busy_seconds_total", "Time with a request at the disk.");
        Counter time = new Counter(sampled == null ? io.runTime() : sampled.rtime); // in nanoseconds
        if (time.isKept()) {
            busy.sample(new BigDecimal(time.value(), 9), labels);
        }
    }

    /** What each disk is; a text that is not told is empty. */
    private void addDisks() {
        Map<String, String> instances = new HashMap<>();
        asked.io.forEach(counted -> instances.putIfAbsent(counted.diskName(), counted.instanceName()));
        Exposition.Family disks = out.gauge("tarn_disk_info", "What a disk is, always 1.");
        for (Identity identity : asked.identities()) {
            disks.sample(1, labels("disk", identity.disk, "instance", instances.getOrDefault(identity.disk, ""),
                                   "vendor", text(identity.vendor), "product", text(identity.product),
                                   "serial", text(identity.serial), "designator", text(identity.designator)));
        }
    }

    private static String text(String told) {
        return Objects.toString(told, "");
    }

    /** What the agent's own counters leave out. */
    private void add(Sample sample) {
        Exposition.Family reads = out.counter("tarn_disk_reads_total", "Reads that ended; 32 bits, which wrap.");
        Exposition.Family writes = out.counter("tarn_disk_writes_total", "Writes that ended; 32 bits, which wrap.");
        Exposition.Family waiting = out.counter("tarn_disk_wait_seconds_total", "Time with a request waiting.");
        Exposition.Family errors = out.counter("tarn_disk_errors_total", "What the driver counts of errors.");
        Map<String, String> kinds = DiskErrors.kinds().stream().collect(Collectors.toMap(kind -> kind, kind -> labels(
            "kind", kind.replaceAll("(?=[A-Z])", "_").toLowerCase(Locale.ROOT))));
        Set<String> told = new HashSet<>();
        for (DiskActivity disk : sample.disks) {
            activity.put(disk.instance, disk);
            String labels = labels("disk", Objects.toString(disk.disk, ""), "instance", disk.instance);
            if (told.add(labels)) {
                reads.distinct(disk.reads, labels);
                writes.distinct(disk.writes, labels);
                waiting.distinct(new BigDecimal(new Counter(disk.wtime).value(), 9), labels);
                if (disk.errors != null) {
                    DiskErrors.of(disk.errors).forEach(
                        (kind, count) -> errors.distinct(count, labels, kinds.get(kind)));
                }
            }
        }
        Exposition.Family bytes = out.counter("tarn_fc_port_bytes_total", "Bytes through the port, of words of four.");
        for (PortTraffic port : sample.ports) {
            String labels = labels("adapter", port.adapter, "port", port.port, "wwn", Instances.name(port.wwn));
            addWords(bytes, port.txWords, with(labels, "direction", "transmitted"));
            addWords(bytes, port.rxWords, with(labels, "direction", "received"));
        }
    }

    private static void addWords(Exposition.Family bytes, Long words, String labels) {
        if (words != null) {
            bytes.sample(BigInteger.valueOf(words).shiftLeft(2), labels);
        }
    }

    private void addFabric() {
        for (Fabric.Port port : asked.fabric.ports()) {
            String labels = labels("adapter", port.adapter.index, "port", port.index, "wwn", wwn(port.instance));
            out.gauge("tarn_fc_port_online", "Whether the port is online; one that cannot be read is not.")
                .sample(port.instance != null && PortStates.isOk(port.instance) ? 1 : 0, labels);
            addSpeed(port, labels);
            addCounters(port.statistics, labels);
            out.gauge("tarn_fc_remote_ports", "Remote ports that the port has discovered.")
                .sample(port.remotePorts.size(), labels);
            Exposition.Family remotes = out.gauge("tarn_fc_remote_port_online", "Whether the remote port is online.");
            port.remotePorts.stream().filter(remote -> remote.instance != null).forEach(remote -> remotes.sample(
                PortStates.isOk(remote.instance) ? 1 : 0, with(labels, "remote_wwn", wwn(remote.instance))));
        }
        Exposition.Family paths =
            out.gauge("tarn_lun_paths", "Paths to a logical unit, by whether both ends are online.");
        Exposition.Family up = out.gauge("tarn_lun_path_up", "Whether both ends of the path are online.");
        Map<Fabric.RemotePort, String> ends = new HashMap<>();
        Map<String, String> disks = new HashMap<>();
        for (LogicalUnit unit : asked.paths.units) {
            String labels = labels("node", unit.node, "lun", unit.lun);
            paths.sample(unit.onlinePaths(), with(labels, "state", "online"));
            paths.sample(unit.distinctPaths().size() - unit.onlinePaths(), with(labels, "state", "other"));
            Set<List<String>> told = new HashSet<>();
            for (LogicalUnit.Path path : unit.distinctPaths()) {
                String between = ends.computeIfAbsent(path.remote, remote -> labels(
                    "adapter", path.adapter, "port", path.port, "wwn", Instances.name(path.portWWN),
                    "remote_wwn", Instances.name(path.remotePort)));
                String disk = disks.computeIfAbsent(path.deviceName(), name -> labels("disk", name));
                if (told.add(List.of(disk, between))) {
                    up.distinct(path.isOnline() ? 1 : 0, labels, disk, between);
                }
            }
        }
    }

    private static String wwn(TrInstance port) {
        return Instances.name(port, HbaPortProvider.permanentAddress);
    }

    private void addSpeed(Fabric.Port port, String labels) {
        Exposition.Family speed = out.gauge(
            "tarn_fc_port_speed_bytes_per_second", "The payload that the link of the port takes, by its generation.");
        Long payload = port.instance == null ? null : PayloadRates.of(port.instance);
        if (payload != null) {
            speed.sample(payload, labels);
        }
    }

    private void addCounters(TrInstance statistics, String labels) {
        Exposition.Family frames = out.counter("tarn_fc_port_frames_total", "Frames through the port.");
        Exposition.Family errors = out.counter("tarn_fc_port_errors_total", "What went wrong at the port.");
        if (statistics != null) {
            count(frames, Counter.of(statistics, FCPortStatisticsProvider.packetsTransmitted),
                  with(labels, "direction", "transmitted"));
            count(frames, Counter.of(statistics, FCPortStatisticsProvider.packetsReceived),
                  with(labels, "direction", "received"));
            for (PortError error : PortError.values()) {
                count(errors, error.in(statistics), with(labels, "kind", error.name().toLowerCase(Locale.ROOT)));
            }
        }
    }

    /** One that is not kept is left out. */
    private static void count(Exposition.Family family, Counter counter, String labels) {
        if (counter.isKept()) {
            family.sample(counter.value(), labels);
        }
    }

    private static String labels(Object... pairs) {
        return Exposition.labels(pairs);
    }

    static String with(String labels, String name, Object value) {
        return labels + ',' + labels(name, value);
    }

    private static BigInteger kilobytes(long number) {
        return BigInteger.valueOf(number).multiply(BigInteger.valueOf(1024));
    }
}
