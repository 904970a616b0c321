package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Set;
import java.util.function.Predicate;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What is wrong with a host. */
public final class Check {
    /** What may be wrong, in the order of the findings. */
    private enum Code {
        SECTION_FAILED, UNIT_LOST, DISK_LOST, FILE_SYSTEM_UNREADABLE, FILE_SYSTEM_FULL, PROCESSOR_OFFLINE,
        DISK_UNREADABLE, DISK_UNLABELLED, ADAPTER_UNREADABLE, PORT_UNREADABLE, STATISTICS_UNREADABLE, PORT_NOT_ONLINE,
        PORT_SLOW, PORT_ERRORS, DUPLICATE_WWN, REMOTE_PORT_UNREADABLE, REMOTE_PORT_NOT_ONLINE, SINGLE_PATH, PATHS_LOST,
        FEWER_PATHS, SHARED_ADAPTER, SHARED_FABRIC, SHARED_ARRAY_PORT, RECORDING_OLD, LIBRARY_WARNING, DRIVE_ERRORS,
        ARRAY_COUNTERS, ARRAY_CONTROLLER_SILENT;

        private final String word = name().toLowerCase(Locale.ROOT).replace('_', '-');
    }

    /** One thing that is wrong. */
    public static final class Finding {
        /** "critical" or "warning". */
        public final String severity;
        /** What is wrong: a word for programs. */
        public final String code;
        /** What it is wrong with. */
        public final String subject;
        /** What it follows from: a message, a state, an instance or another answer, as the code has it; or null. */
        public final Object fact;
        /** The disks that it is about, by the names that {@code disks} has for them. */
        public final List<String> disks;
        /** Where file systems on them are mounted. */
        public final List<String> mounts;

        private final Code order;

        private Finding(boolean critical, Code code, String subject, Object fact, List<String> disks,
                        List<String> mounts) {
            severity = critical ? "critical" : "warning";
            this.code = code.word;
            this.subject = subject;
            this.fact = fact;
            this.disks = disks;
            this.mounts = mounts;
            order = code;
        }

        /** {@return whether it is critical, and no warning} */
        public boolean isCritical() {
            return severity.equals("critical");
        }
    }

    /** A unit with the paths that it had when all was well. */
    public static final class LostPaths {
        /** Then. */
        public final LogicalUnit before;
        /** Now. */
        public final LogicalUnit now;

        private LostPaths(LogicalUnit before, LogicalUnit now) {
            this.before = before;
            this.now = now;
        }
    }

    /** "OK", "WARNING" or "CRITICAL", as monitoring plugins have it. */
    public final String state;
    /** The critical ones first. */
    public final List<Finding> findings;
    /** How many more there are, which the rules silence. */
    public final int ignored;

    private Check(List<Finding> found, CheckRules rules) {
        findings = found.stream().filter(finding -> !rules.ignored.contains(finding.code, finding.subject))
            .sorted(Comparator.comparing((Finding finding) -> !finding.isCritical())
                        .thenComparing(finding -> finding.order)).collect(Collectors.toList());
        ignored = found.size() - findings.size();
        state = findings.isEmpty() ? "OK" : findings.get(0).isCritical() ? "CRITICAL" : "WARNING";
    }

    /**
     * {@return what is wrong with a host}
     *
     * @param asked what it answered
     * @param baseline what it answered when all was well, or null
     * @param rules what makes a check find something
     */
    public static Check of(Asked asked, Asked baseline, CheckRules rules) {
        return new Check(new Examination(asked.disks, rules).examine(asked, baseline), rules);
    }

    /**
     * {@return what is wrong with what is seen of the storage network, not sorted}
     *
     * @param fabric what is seen
     */
    public static List<Finding> of(Fabric fabric) {
        Examination examination = new Examination(fabric.disks, new CheckRules());
        examination.examineFabric(fabric, new Paths(fabric));
        return examination.findings;
    }

    /** {@return what may be wrong: the words for programs} */
    public static Stream<String> codes() {
        return Stream.of(Code.values()).map(code -> code.word);
    }

    /** The walk through everything that was asked. */
    private static final class Examination {
        private final Disks disks;
        private final CheckRules rules;
        private final List<Finding> findings = new ArrayList<>();

        private Examination(Disks disks, CheckRules rules) {
            this.disks = disks;
            this.rules = rules;
        }

        private List<Finding> examine(Asked asked, Asked baseline) {
            asked.failures.forEach((command, message) -> add(true, Code.SECTION_FAILED, command, message));
            asked.fileSystems.forEach((mountPoint, use) -> examineFileSystem(mountPoint, use, asked));
            asked.processors.stream().filter(data -> !data.state().equals("online")).forEach(
                data -> warn(Code.PROCESSOR_OFFLINE, String.valueOf(data.processorId()), data.state()));
            examineDisks(asked);
            examineFabric(asked.fabric, asked.paths);
            if (baseline != null) {
                compare(asked, baseline);
            }
            // Whoever limits the age of a description is not content with one that does not tell it.
            if (rules.maxAge != null && (asked.recordedAt == null ? asked.isDescribed
                                         : asked.recordedAt.isBefore(rules.now.minus(rules.maxAge)))) {
                warn(Code.RECORDING_OLD, asked.host, asked.recordedAt);
            }
            if (asked.array != null) {
                examineArray(asked.array);
            }
            // One fault is one finding.
            Set<String> subjects = findings.stream().map(finding -> finding.subject).collect(Collectors.toSet());
            asked.warnings.forEach((command, lines) -> lines.stream()
                .filter(line -> line.subject().isEmpty() || !subjects.contains(line.subject()))
                .collect(Collectors.groupingBy(LibraryLog.Line::text, LinkedHashMap::new, Collectors.counting()))
                .forEach((text, times) -> warn(Code.LIBRARY_WARNING, command,
                                               times == 1 ? text : text + " (" + times + " times)")));
            return findings;
        }

        private void examineFileSystem(String mountPoint, FileSystemUse use, Asked asked) {
            if (use == null) {
                addMounted(false, Code.FILE_SYSTEM_UNREADABLE, mountPoint, asked.unreadable.get(mountPoint));
            } else if (rules.isCritical(use) || use.isFull(rules.warningPercent(mountPoint))) {
                addMounted(rules.isCritical(use), Code.FILE_SYSTEM_FULL, mountPoint, use);
            }
        }

        private void addMounted(boolean critical, Code code, String mountPoint, Object fact) {
            String disk = disks.diskAt(mountPoint);
            findings.add(new Finding(critical, code, mountPoint, fact, disk == null ? List.of() : List.of(disk),
                                     List.of(mountPoint)));
        }

        private void examineDisks(Asked asked) {
            if (!asked.failures.containsKey("disks")) {
                asked.io.stream().map(counted -> counted.diskName()).distinct()
                    .filter(name -> !name.isEmpty() && !disks.drives.containsKey(name))
                    .forEach(name -> addDisk(false, Code.DISK_UNREADABLE, name, disks));
            }
            for (TrInstance drive : asked.drives) {
                if (drive.get(SolarisDiskDriveProvider.diskType) == null) {
                    addDisk(false, Code.DISK_UNLABELLED, (String) drive.get(SolarisDiskDriveProvider.name), disks);
                }
            }
        }

        private void addDisk(boolean critical, Code code, String disk, Disks known) {
            findings.add(new Finding(critical, code, disk, null, List.of(disk), known.mountPointsOn(List.of(disk))));
        }

        private void examineFabric(Fabric fabric, Paths paths) {
            fabric.adapters.stream().filter(adapter -> adapter.instance == null).forEach(
                adapter -> add(true, Code.ADAPTER_UNREADABLE, adapter.place(), null));
            Map<String, Fabric.Port> byName = new HashMap<>();
            for (Fabric.Port port : fabric.ports()) {
                if (port.instance == null) {
                    warn(Code.PORT_UNREADABLE, port.place(), null);
                } else {
                    examinePort(port, byName);
                }
                if (port.recorded && port.statistics == null) {
                    warn(Code.STATISTICS_UNREADABLE, port.place(), port.instance);
                }
            }
            fabric.remotePorts().forEach(remote -> {
                if (remote.instance == null) {
                    warn(Code.REMOTE_PORT_UNREADABLE, remote.place(), null);
                } else if (!PortStates.isOk(remote.instance)) {
                    warn(Code.REMOTE_PORT_NOT_ONLINE, remote.place(), remote.instance);
                }
            });
            Independence independence = new Independence(fabric, paths);
            for (LogicalUnit unit : paths.units) {
                if (unit.lacksPaths()) {
                    addUnit(false, Code.SINGLE_PATH, unit, disks);
                }
                independence.of(unit).forEach(flaw -> addUnit(false, Code.valueOf(flaw.name()), unit, disks));
            }
        }

        private void examinePort(Fabric.Port port, Map<String, Fabric.Port> byName) {
            if (!PortStates.isOk(port.instance)) {
                add(PortStates.isError(port.instance), Code.PORT_NOT_ONLINE, port.place(), port.instance);
            }
            long speed = Instances.number(port.instance, HbaPortProvider.speed).longValue();
            long maxSpeed = Instances.number(port.instance, HbaPortProvider.maxSpeed).longValue();
            if (speed > 1 && speed < maxSpeed) { // 0 and 1 are unknown
                warn(Code.PORT_SLOW, port.place(), port.instance);
            }
            String wwn = Instances.name(port.instance, HbaPortProvider.permanentAddress);
            Fabric.Port first = wwn.isEmpty() ? null : byName.putIfAbsent(wwn, port);
            if (first != null) {
                warn(Code.DUPLICATE_WWN, port.place(), first);
            }
        }

        /** What is not there any more, or worse than it was. What either time could not be asked is not compared. */
        private void compare(Asked asked, Asked baseline) {
            Predicate<String> known = command ->
                !asked.failures.containsKey(command) && !baseline.failures.containsKey(command);
            if (known.test("disks")) {
                baseline.disks.drives.keySet().stream().filter(name -> !disks.drives.containsKey(name))
                    .forEach(name -> addDisk(true, Code.DISK_LOST, name, baseline.disks));
            }
            if (!known.test("hba")) {
                return;
            }
            Map<String, LogicalUnit> units = new HashMap<>();
            asked.paths.units.forEach(unit -> units.put(unit.place(), unit));
            for (LogicalUnit before : baseline.paths.units) {
                LogicalUnit now = units.get(before.place());
                if (now == null) {
                    addUnit(true, Code.UNIT_LOST, before, baseline.disks);
                } else if (now.onlinePaths() < before.onlinePaths()) {
                    // What was mounted on it may have been by the path that is gone.
                    findings.add(new Finding(
                        2 * now.onlinePaths() < before.onlinePaths(), Code.PATHS_LOST, now.place(),
                        new LostPaths(before, now), union(now.disks(), before.disks()),
                        union(disks.mountPointsOn(now.disks()), baseline.disks.mountPointsOn(before.disks()))));
                }
            }
            for (Fabric.Port port : asked.fabric.ports()) {
                Map<PortError, Double> risen = PortError.risen(baseline.fabric, port);
                if (!risen.isEmpty()) {
                    warn(Code.PORT_ERRORS, port.place(), Map.entry(port.instance, risen));
                }
            }
        }

        private static List<String> union(List<String> one, List<String> other) {
            return Stream.concat(one.stream(), other.stream()).distinct().collect(Collectors.toList());
        }

        private void addUnit(boolean critical, Code code, LogicalUnit unit, Disks known) {
            findings.add(new Finding(critical, code, unit.place(), unit, unit.disks(),
                                     known.mountPointsOn(unit.disks())));
        }

        /** Both controllers' counts of a drive are one finding. */
        private void examineArray(ArrayReport report) {
            Map<String, List<ArrayReport.Row>> errors = report.rows.stream()
                .filter(row -> row.unrecovered() != 0 || row.timeouts() != 0)
                .collect(Collectors.groupingBy(ArrayReport.Row::place, LinkedHashMap::new, Collectors.toList()));
            errors.forEach((place, rows) -> warn(Code.DRIVE_ERRORS, place, rows));
            if (report.rows.isEmpty()) {
                warn(Code.ARRAY_COUNTERS, report.controllers.get(0), report);
            }
            Map<String, Boolean> silent = report.rows.stream().collect(Collectors.groupingBy(
                row -> row.controller, LinkedHashMap::new, Collectors.reducing(true,
                    row -> row.counters.stream().allMatch(count -> count == 0), Boolean::logicalAnd)));
            if (silent.containsValue(false)) {
                silent.forEach((controller, isSilent) -> {
                    if (isSilent) {
                        warn(Code.ARRAY_CONTROLLER_SILENT, controller, null);
                    }
                });
            }
        }

        private void warn(Code code, String subject, Object fact) {
            add(false, code, subject, fact);
        }

        private void add(boolean critical, Code code, String subject, Object fact) {
            findings.add(new Finding(critical, code, subject, fact, List.of(), List.of()));
        }
    }
}
