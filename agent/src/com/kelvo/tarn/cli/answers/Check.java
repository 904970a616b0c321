package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.stream.Collectors;

/** What is wrong with a host. */
public final class Check {
    /** What may be wrong, in the order of the findings. */
    private enum Code {
        SECTION_FAILED, FILE_SYSTEM_UNREADABLE, FILE_SYSTEM_FULL, PROCESSOR_OFFLINE, DISK_UNREADABLE, DISK_UNLABELLED,
        ADAPTER_UNREADABLE, PORT_UNREADABLE, STATISTICS_UNREADABLE, PORT_NOT_ONLINE, REMOTE_PORT_UNREADABLE,
        REMOTE_PORT_NOT_ONLINE, SINGLE_PATH, LIBRARY_WARNING, DRIVE_ERRORS, ARRAY_COUNTERS
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

        private final Code order;

        private Finding(boolean critical, Code code, String subject, Object fact) {
            severity = critical ? "critical" : "warning";
            this.code = code.name().toLowerCase(Locale.ROOT).replace('_', '-');
            this.subject = subject;
            this.fact = fact;
            order = code;
        }

        /** {@return whether it is critical, and no warning} */
        public boolean isCritical() {
            return severity.equals("critical");
        }
    }

    /** "OK", "WARNING" or "CRITICAL", as monitoring plugins have it. */
    public final String state;
    /** The critical ones first. */
    public final List<Finding> findings;

    private Check(List<Finding> found) {
        findings = found.stream().sorted(Comparator.comparing((Finding finding) -> !finding.isCritical())
                                             .thenComparing(finding -> finding.order)).collect(Collectors.toList());
        state = findings.isEmpty() ? "OK" : findings.get(0).isCritical() ? "CRITICAL" : "WARNING";
    }

    /**
     * Asks the host.
     *
     * @param library what is asked; the warnings that it logs are findings
     * @param fullPercent how many per cent used make a file system full
     * @param array the four arguments of an array report, or none
     * @return what is wrong
     */
    public static Check of(Library library, int fullPercent, List<String> array) {
        return new Check(new Examination(library, fullPercent).examine(array));
    }

    /**
     * {@return what is wrong with what is seen of the storage network, not sorted}
     *
     * @param fabric what is seen
     */
    public static List<Finding> of(Fabric fabric) {
        Examination examination = new Examination(null, 0);
        examination.examineFabric(fabric);
        return examination.findings;
    }

    /** The walk through everything that is asked. */
    private static final class Examination {
        private final Library library;
        private final int fullPercent;
        private final List<Finding> findings = new ArrayList<>();

        private Examination(Library library, int fullPercent) {
            this.library = library;
            this.fullPercent = fullPercent;
        }

        private List<Finding> examine(List<String> array) {
            ask("logical-disks", () -> examineFileSystems(library.logicalDisks()));
            ask("processors", () -> library.processors().stream().filter(data -> !data.state().equals("online"))
                .forEach(data -> warn(Code.PROCESSOR_OFFLINE, String.valueOf(data.processorId()),
                                      data.state())));
            List<String> counted = new ArrayList<>();
            ask("disk-io", () -> library.diskIo().stream().map(SolarisDiskIOInformation::diskName).distinct()
                .filter(name -> !name.isEmpty()).forEach(counted::add));
            ask("disks", () -> examineDisks(library.disks(), counted));
            ask("hba", () -> examineFabric(library.fabric()));
            if (!array.isEmpty()) {
                ask("array", () -> examineArray(new ArrayReport(library.array(array), array.subList(0, 2))));
            }
            return findings;
        }

        /** Asks what a command asks, whatever comes of it. */
        private void ask(String command, Runnable question) {
            int mark = library.log().mark();
            try {
                question.run();
            } catch (RuntimeException | StackOverflowError | OutOfMemoryError thrown) {
                add(true, Code.SECTION_FAILED, command,
                    Objects.requireNonNullElse(thrown.getMessage(), thrown.toString()));
            }
            library.log().since(mark).stream().filter(LibraryLog.Line::isWarning).map(LibraryLog.Line::text)
                .collect(Collectors.groupingBy(text -> text, LinkedHashMap::new, Collectors.counting()))
                .forEach((text, times) -> warn(Code.LIBRARY_WARNING, command,
                                               times == 1 ? text : text + " (" + times + " times)"));
        }

        private void examineFileSystems(List<SolarisLogicalDisk> listed) {
            listed.stream().map(SolarisLogicalDisk::mountPoint).distinct().forEach(mountPoint -> {
                FileSystemUse use;
                try {
                    use = new FileSystemUse(library.logicalDisk(mountPoint));
                } catch (RuntimeException unreadable) {
                    warn(Code.FILE_SYSTEM_UNREADABLE, mountPoint, unreadable.getMessage());
                    return;
                }
                if (!use.isKnown()) {
                    warn(Code.FILE_SYSTEM_UNREADABLE, mountPoint, null);
                } else if (use.isFull(fullPercent)) {
                    add(use.isExhausted(), Code.FILE_SYSTEM_FULL, mountPoint, use);
                }
            });
        }

        private void examineDisks(List<TrInstance> drives, List<String> counted) {
            Set<String> readable = drives.stream()
                .map(drive -> (String) drive.get(SolarisDiskDriveProvider.name)).collect(Collectors.toSet());
            counted.stream().filter(name -> !readable.contains(name))
                .forEach(name -> warn(Code.DISK_UNREADABLE, name, null));
            drives.stream().filter(drive -> drive.get(SolarisDiskDriveProvider.diskType) == null).forEach(
                drive -> warn(Code.DISK_UNLABELLED, (String) drive.get(SolarisDiskDriveProvider.name), null));
        }

        private void examineFabric(Fabric fabric) {
            fabric.adapters.stream().filter(adapter -> adapter.instance == null).forEach(
                adapter -> add(true, Code.ADAPTER_UNREADABLE, adapter.place(), null));
            for (Fabric.Port port : fabric.ports()) {
                if (port.instance == null) {
                    warn(Code.PORT_UNREADABLE, port.place(), null);
                } else if (!PortStates.isOk(port.instance)) {
                    add(PortStates.isError(port.instance), Code.PORT_NOT_ONLINE, port.place(), port.instance);
                }
                if (port.recorded && port.statistics == null) {
                    warn(Code.STATISTICS_UNREADABLE, port.place(), null);
                }
            }
            fabric.remotePorts().forEach(remote -> {
                if (remote.instance == null) {
                    warn(Code.REMOTE_PORT_UNREADABLE, remote.place(), null);
                } else if (!PortStates.isOk(remote.instance)) {
                    warn(Code.REMOTE_PORT_NOT_ONLINE, remote.place(), remote.instance);
                }
            });
            new Paths(fabric).units.stream().filter(LogicalUnit::lacksPaths).forEach(
                unit -> warn(Code.SINGLE_PATH, unit.place(), unit));
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
        }

        private void warn(Code code, String subject, Object fact) {
            add(false, code, subject, fact);
        }

        private void add(boolean critical, Code code, String subject, Object fact) {
            findings.add(new Finding(critical, code, subject, fact));
        }
    }
}
