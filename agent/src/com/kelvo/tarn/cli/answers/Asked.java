package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import java.time.Instant;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.function.Supplier;

/** What a host answered to all that a check is about. */
public final class Asked {
    /** What it calls itself; empty when it does not say. */
    public final String host;
    /** When it was recorded; null when its description does not say, and on a live host. */
    public final Instant recordedAt;
    /** What it sees of its storage network. */
    public final Fabric fabric;
    /** The logical units of that. */
    public final Paths paths;

    /** Whether a description answered. */
    final boolean isDescribed;
    final List<SolarisProcessorData> processors;
    final List<SolarisDiskIOInformation> io;
    final List<TrInstance> drives;
    final Disks disks;
    /** By mount point: how it is used; null when the system does not tell. */
    final Map<String, FileSystemUse> fileSystems = new LinkedHashMap<>();
    /** By mount point: why it could not be asked. */
    final Map<String, String> unreadable = new LinkedHashMap<>();
    /** Null: no array was asked about. */
    final ArrayReport array;
    /** By the command that makes it: what a call raised. */
    final Map<String, String> failures = new LinkedHashMap<>();
    /** The warnings that the library logged, by the command that made it log them. */
    final Map<String, List<LibraryLog.Line>> warnings = new LinkedHashMap<>();

    /**
     * Asks the host that answers now.
     *
     * @param library what is asked
     * @param arrayArguments the four arguments of an array report, or none
     */
    public Asked(Library library, List<String> arrayArguments) {
        host = library.log().unheard(
            () -> ask(library, "computer-system", () -> library.computerSystem().hostName(), ""));
        failures.clear(); // the name is no subject of a check
        warnings.clear();
        recordedAt = library.recordedAt();
        isDescribed = library.isDescribed();
        List<SolarisLogicalDisk> mounted = new ArrayList<>();
        ask(library, "logical-disks", () -> mounted.addAll(askFileSystems(library)), false);
        processors = ask(library, "processors", library::processors, List.of());
        io = ask(library, "disk-io", library::diskIo, List.of());
        drives = ask(library, "disks", library::disks, List.of());
        disks = new Disks(drives, List.of(), io, mounted);
        fabric = ask(library, "hba", () -> library.fabric(disks),
                     new Fabric(disks, new HbaCache.Hba[0], new HbaCache.Hba[0], false));
        paths = new Paths(fabric);
        array = arrayArguments.isEmpty() ? null : ask(
            library, "array", () -> new ArrayReport(library.array(arrayArguments), arrayArguments.subList(0, 2)), null);
    }

    /** Asks what a command asks, whatever comes of it. */
    private <T> T ask(Library library, String command, Supplier<T> question, T otherwise) {
        int mark = library.log().mark();
        T answer = otherwise;
        try {
            answer = question.get();
        } catch (RuntimeException | StackOverflowError | OutOfMemoryError thrown) {
            failures.put(command, Objects.requireNonNullElse(thrown.getMessage(), thrown.toString()));
        }
        List<LibraryLog.Line> logged = library.log().since(mark);
        logged.removeIf(line -> !line.isWarning());
        warnings.put(command, logged);
        return answer;
    }

    /** Each mount point once, by name, too: only that tells the sizes. */
    private List<SolarisLogicalDisk> askFileSystems(Library library) {
        List<SolarisLogicalDisk> listed = library.logicalDisks();
        listed.stream().map(SolarisLogicalDisk::mountPoint).distinct().forEach(mountPoint -> {
            try {
                FileSystemUse use = new FileSystemUse(library.logicalDisk(mountPoint));
                fileSystems.put(mountPoint, use.isKnown() ? use : null);
            } catch (RuntimeException refused) {
                fileSystems.put(mountPoint, null);
                unreadable.put(mountPoint, refused.getMessage());
            }
        });
        return listed;
    }

    /** {@return the fewest online paths of a logical unit; null when there is none} */
    public Long fewestPaths() {
        return paths.units.stream().map(LogicalUnit::onlinePaths).min(Long::compare).orElse(null);
    }

    /** {@return how each file system that tells its sizes is used, by its mount point} */
    public Map<String, FileSystemUse> fileSystemUses() {
        Map<String, FileSystemUse> known = new LinkedHashMap<>(fileSystems);
        known.values().removeIf(Objects::isNull);
        return known;
    }
}
