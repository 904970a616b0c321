package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import java.time.Instant;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Supplier;

/** What a host answered to all that a check is about. */
public final class Asked {
    private static final String IDENTITIES = "identities";

    /** What it is; null when it could not be asked, which is no failure of a check's. */
    public final SolarisComputerSystem computerSystem;
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
    /** Those that answered with their sizes or without, one of each mount point. */
    public final List<FileSystem> sizedFileSystems;
    /** All of them. */
    public final List<SolarisProcessorData> processors;
    /** The counters of each disk. */
    public final List<SolarisDiskIOInformation> io;

    final List<TrInstance> drives;
    private final List<Identity> identities;
    private final Library library;
    final Disks disks;
    /** By mount point: how it is used; null when the system does not tell. */
    public final Map<String, FileSystemUse> fileSystems;
    /** By mount point: why it could not be asked, or how long it has been waited for. */
    final Map<String, Object> unreadable;
    /** Null: no array was asked about. */
    final ArrayReport array;
    /** By the command that makes it: what a call raised. */
    final Map<String, String> failures = new LinkedHashMap<>();
    /** The same of what a check does without. */
    private final Map<String, String> failuresAside = new LinkedHashMap<>();
    /** Commands whose answer was not waited for. */
    private final Set<String> silent = new HashSet<>();
    /** The warnings that the library logged, by the command that made it log them. */
    final Map<String, List<LibraryLog.Line>> warnings = new LinkedHashMap<>();

    /**
     * Asks the host that answers now.
     *
     * @param library what is asked
     * @param arrayArguments the four arguments of an array report, or none
     */
    public Asked(Library library, List<String> arrayArguments) {
        this(library, arrayArguments, Asking.AT_ONCE);
    }

    /**
     * Asks the host that answers now.
     *
     * @param library what is asked
     * @param arrayArguments the four arguments of an array report, or none
     * @param asking how each question is put
     */
    public Asked(Library library, List<String> arrayArguments, Asking asking) {
        this.library = library;
        Questions questions = new Questions(library.log(), asking);
        computerSystem = questions.ask(
            "computer-system", () -> library.log().unheard(library::computerSystem), null);
        host = computerSystem == null ? "" : computerSystem.hostName();
        failures.clear(); // the name is no subject of a check
        warnings.clear();
        recordedAt = library.recordedAt();
        isDescribed = library.isDescribed();
        FileSystems mounted = questions.ask("logical-disks", () -> new FileSystems(library), new FileSystems());
        mounted.addMounts(askMounts(questions, asking));
        fileSystems = mounted.uses;
        unreadable = mounted.unreadable;
        sizedFileSystems = mounted.sized;
        processors = questions.ask("processors", library::processors, List.of());
        io = questions.ask("disk-io", library::diskIo, List.of());
        drives = questions.ask("disks", library::disks, List.of());
        identities = askIdentities(questions);
        disks = new Disks(drives, List.of(), io, mounted.listed, identities);
        fabric = questions.ask("hba", () -> library.fabric(disks),
                               new Fabric(disks, new HbaCache.Hba[0], new HbaCache.Hba[0], false));
        paths = new Paths(fabric);
        array = arrayArguments.isEmpty() ? null : questions.ask(
            "array", () -> new ArrayReport(library.array(arrayArguments), arrayArguments.subList(0, 2)), null);
    }

    /** Where there is no inventory, a check is without its mounts. */
    private List<FileSystem> askMounts(Questions questions, Asking asking) {
        List<FileSystem> told = questions.ask(Library.MOUNTS, () -> library.mounts(asking.mountLimit()), List.of());
        if (library.lacksInventory()) {
            failuresAside.put(Library.MOUNTS, failures.remove(Library.MOUNTS));
        }
        return told;
    }

    /** Where the disks hang, a second call would hang in them too. */
    private List<Identity> askIdentities(Questions questions) {
        if (silent.contains("disks")) {
            failuresAside.put(IDENTITIES, failures.get("disks"));
            return List.of();
        }
        List<Identity> told = questions.ask(IDENTITIES, library::identities, List.of());
        if (failures.containsKey(IDENTITIES)) {
            failuresAside.put(IDENTITIES, failures.remove(IDENTITIES));
        }
        return told;
    }

    /** Asks what commands ask, whatever comes of it. */
    private final class Questions {
        private final LibraryLog log;
        private final Asking asking;

        Questions(LibraryLog log, Asking asking) {
            this.log = log;
            this.asking = asking;
        }

        <T> T ask(String command, Supplier<T> question, T otherwise) {
            Heard<T> heard;
            try {
                heard = asking.ask(command, () -> new Heard<>(log, question));
            } catch (IllegalStateException late) {
                failures.put(command, late.getMessage());
                silent.add(command);
                return otherwise;
            }
            warnings.put(command, heard.warnings);
            if (heard.failure != null) {
                failures.put(command, heard.failure);
                return otherwise;
            }
            return heard.answer;
        }
    }

    /** What came of a question. */
    private static final class Heard<T> {
        private T answer;
        /** What the call raised, or null. */
        private String failure;
        private final List<LibraryLog.Line> warnings;

        Heard(LibraryLog log, Supplier<T> question) {
            int mark = log.mark();
            try {
                answer = question.get();
            } catch (RuntimeException | LinkageError | StackOverflowError | OutOfMemoryError thrown) {
                failure = Objects.requireNonNullElse(thrown.getMessage(), thrown.toString());
            }
            warnings = log.since(mark);
            warnings.removeIf(line -> !line.isWarning());
        }
    }

    /** What is mounted, and of each mount point what came of asking it for its sizes. */
    private static final class FileSystems {
        private final List<FileSystem> listed = new ArrayList<>();
        private final List<FileSystem> sized = new ArrayList<>();
        private final Map<String, FileSystemUse> uses = new LinkedHashMap<>();
        private final Map<String, Object> unreadable = new LinkedHashMap<>();

        /** None. */
        FileSystems() {
        }

        /** The agent's. Each is asked once by name, too: only that tells the sizes. */
        FileSystems(Library library) {
            listed.addAll(library.logicalDisks());
            listed.stream().map(each -> each.mountPoint).distinct().forEach(mountPoint -> {
                try {
                    add(library.logicalDisk(mountPoint));
                } catch (RuntimeException refused) {
                    uses.put(mountPoint, null);
                    unreadable.put(mountPoint, refused.getMessage());
                }
            });
        }

        /** The inventory's. */
        void addMounts(List<FileSystem> mounts) {
            listed.addAll(mounts);
            mounts.forEach(this::add);
        }

        /** The sizes at a mount point are those of what was mounted there last, whoever tells them. */
        private void add(FileSystem disk) {
            if (!uses.containsKey(disk.mountPoint)) {
                sized.add(disk);
                uses.put(disk.mountPoint, disk.isSized() ? new FileSystemUse(disk) : null);
                if (disk.silence != null) {
                    unreadable.put(disk.mountPoint, disk.silence);
                }
            }
        }
    }

    /**
     * Raises an exception when a command's question was not answered.
     *
     * @param command the one that asks it
     */
    public void requireAnswer(String command) {
        String failure = failures.getOrDefault(command, failuresAside.get(command));
        if (failure != null) {
            throw new IllegalStateException(command + ": " + failure);
        }
    }

    /** {@return what each disk is; nothing where that cannot be told, which is a line in the log} */
    public List<Identity> identities() {
        warnAside(IDENTITIES);
        return identities;
    }

    /** Says in the log, where the inventory's mounts cannot be told of, that they cannot. */
    public void warnOfMounts() {
        warnAside(Library.MOUNTS);
    }

    private void warnAside(String question) {
        if (failuresAside.containsKey(question)) {
            library.log().warn(question + ": " + failuresAside.get(question));
        }
    }

    /**
     * {@return whether an answer is not waited for any longer}
     *
     * @param command the one that asks for it
     */
    public boolean isSilent(String command) {
        return silent.contains(command);
    }

    /**
     * {@return the disk that the file system is on that is mounted there; null when that is not known}
     *
     * @param mountPoint where
     */
    public String diskAt(String mountPoint) {
        return disks.diskAt(mountPoint);
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
