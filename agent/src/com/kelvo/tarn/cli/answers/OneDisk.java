package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Supplier;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** All that is known of one disk. */
public final class OneDisk {
    /** Such as "c1t0d0". */
    public final String name;
    /** What the kernel calls it, such as "sd0"; null when it does not count the disk's I/O. */
    public final String instance;
    /** Null: the disk cannot be opened. */
    public final TrInstance drive;
    /** The slices that can be read. */
    public final List<TrInstance> partitions;
    /** Null: the kernel does not count its I/O. */
    public final SolarisDiskIOInformation io;
    /** The file systems on it, with their sizes. */
    public final List<SolarisLogicalDisk> mounts;
    /** All paths to the logical units behind Fibre Channel that the disk is one path to. */
    public final List<LogicalUnit.NamedPath> paths;

    /** The units that the paths lead to. */
    public final transient List<LogicalUnit> units;

    private final transient Everything host;

    private OneDisk(String name, Everything host) {
        this.name = name;
        this.host = host;
        drive = first(host.drives.stream().filter(found -> nameOf(found).equals(name)));
        partitions = host.partitions.stream().filter(found -> diskOf(found).equals(name)).collect(Collectors.toList());
        io = first(host.io.stream().filter(counted -> nameOf(counted).equals(name)));
        instance = io == null ? null : io.instanceName();
        mounts = host.mounts.stream().filter(mounted -> name.equals(host.diskOfDevice(mounted.device())))
            .map(host.library::withSizes).collect(Collectors.toList());
        units = host.paths.units.stream()
            .filter(unit -> unit.paths.stream().anyMatch(path -> name.equals(host.diskOfPath(path))))
            .collect(Collectors.toList());
        paths = units.stream().flatMap(unit -> unit.namedPaths().stream()).collect(Collectors.toList());
    }

    /**
     * {@return what disk a path is known as, such as "c2t0d0"; its device's name when it is no disk}
     *
     * @param path one of its units'
     */
    public String diskOf(LogicalUnit.Path path) {
        return Objects.requireNonNullElse(host.diskOfPath(path), path.osDeviceName);
    }

    /**
     * Finds a disk by its own name, a slice's or an instance's, with or without "/dev/dsk/" or "/dev/rdsk/", or the
     * mount point of a file system on it.
     *
     * @param asked any of these
     * @param library what is asked; what could not be is said in its log
     * @return null when nothing is known by that name
     */
    public static OneDisk find(String asked, Library library) {
        Everything host = new Everything(library);
        String name = host.resolve(asked);
        return name == null ? null : new OneDisk(name, host);
    }

    private static String nameOf(TrInstance drive) {
        return Instances.text(drive, SolarisDiskDriveProvider.name);
    }

    /** A disk that has no entry in "/dev/dsk" is called what the kernel calls it. */
    private static String nameOf(SolarisDiskIOInformation counted) {
        return counted.diskName().isEmpty() ? counted.instanceName() : counted.diskName();
    }

    private static String diskOf(TrInstance partition) {
        return Instances.text(partition, SolarisDiskPartitionProvider.diskName);
    }

    private static <T> T first(Stream<T> found) {
        return found.findFirst().orElse(null);
    }

    /** What the host tells of all its disks. What cannot be asked is a line in the log, and empty. */
    private static final class Everything {
        private static final String DEVICES = "/devices";

        private final Library library;
        private final List<TrInstance> drives;
        private final List<TrInstance> partitions;
        private final List<SolarisDiskIOInformation> io;
        private final List<SolarisLogicalDisk> mounts;
        private final Paths paths;
        /** What disks are called, and the disk of each slice and of each physical path. */
        private final Set<String> names = new HashSet<>();
        private final Map<String, String> slices = new HashMap<>();
        private final Map<String, String> devicePaths = new HashMap<>();

        private Everything(Library library) {
            this.library = library;
            drives = ask("disks", library::disks);
            partitions = ask("partitions", library::partitions);
            io = ask("disk-io", library::diskIo);
            mounts = ask("logical-disks", library::logicalDisks);
            paths = new Paths(ask("hba", () -> List.of(library.fabric())).stream().findFirst().orElseGet(Fabric::new));
            for (TrInstance drive : drives) {
                names.add(nameOf(drive));
                devicePaths.put(Instances.text(drive, SolarisDiskDriveProvider.deviceIdentifier), nameOf(drive));
            }
            io.forEach(counted -> names.add(nameOf(counted)));
            for (TrInstance partition : partitions) {
                names.add(diskOf(partition));
                slices.put(Instances.text(partition, SolarisDiskPartitionProvider.name), diskOf(partition));
            }
            Stream.concat(mounts.stream().map(SolarisLogicalDisk::device).filter(DeviceNames::hasDirectory),
                          allPaths().map(path -> path.osDeviceName))
                .map(DeviceNames::withoutDirectory).filter(entry -> !entry.contains("/"))
                .forEach(entry -> names.add(DeviceNames.withoutSlice(entry)));
            names.remove("");
        }

        private <T> List<T> ask(String command, Supplier<List<T>> question) {
            try {
                return question.get();
            } catch (RuntimeException failed) {
                library.log().warn(command + ": " + failed.getMessage());
                return List.of();
            }
        }

        /** The disk's own name; null when nothing is known by that one. */
        private String resolve(String asked) {
            return Stream.<Supplier<Stream<String>>>of(
                () -> mounts.stream().filter(mounted -> mounted.mountPoint().equals(asked))
                    .map(mounted -> diskOfDevice(mounted.device())),
                () -> Stream.ofNullable(diskOfDevice(asked)),
                () -> Stream.ofNullable(diskOfEntry(asked)),
                () -> io.stream().filter(counted -> counted.instanceName().equals(asked))
                    .map(OneDisk::nameOf),
                () -> allPaths().filter(path -> asked.equals(numberedName(path))).map(this::diskOfPath))
                .flatMap(Supplier::get).filter(Objects::nonNull).findFirst().orElse(null);
        }

        /** The disk that a path in "/dev/dsk" or "/dev/rdsk" leads to, or null. */
        private String diskOfDevice(String device) {
            return DeviceNames.hasDirectory(device) ? diskOfEntry(DeviceNames.withoutDirectory(device)) : null;
        }

        /** The disk that is called so, or has a slice that is, or null. */
        private String diskOfEntry(String entry) {
            return Stream.of(entry, slices.getOrDefault(entry, ""), DeviceNames.withoutSlice(entry))
                .filter(names::contains).findFirst().orElse(null);
        }

        /** The HBA library names a device by its place in "/dev/rdsk", or by its physical path. Null: it is no disk. */
        private String diskOfPath(LogicalUnit.Path path) {
            return path.osDeviceName.startsWith(DEVICES)
                ? devicePaths.get(path.osDeviceName.substring(DEVICES.length()).replaceFirst(":[^/]*$", ""))
                : diskOfEntry(DeviceNames.withoutDirectory(path.osDeviceName));
        }

        private Stream<LogicalUnit.Path> allPaths() {
            return paths.units.stream().flatMap(unit -> unit.paths.stream());
        }

        /** What the path's device is called without its name in "/dev/rdsk". */
        private static String numberedName(LogicalUnit.Path path) {
            return "c" + path.scsiBus + "t" + path.targetId + "d" + path.scsiLun;
        }
    }
}
