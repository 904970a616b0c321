package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.function.Consumer;
import java.util.function.Supplier;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** All that is known of one disk. */
public final class OneDisk {
    /** Such as "c1t0d0". */
    public final String name;
    /** What the kernel calls it, such as "sd0"; null when it does not count the disk's I/O. */
    public final String instance;
    /** What it is; null when that is not told. */
    public final Identity identity;
    /** Null: the disk cannot be opened. */
    public final TrInstance drive;
    /** The slices that can be read. */
    public final List<TrInstance> partitions;
    /** Null: the kernel does not count its I/O. */
    public final SolarisDiskIOInformation io;
    /** The file systems on it, by whichever device, with their sizes. */
    public final List<FileSystem> mounts;
    /** All paths to the logical units behind Fibre Channel that the disk is one path to, or a pseudo device over. */
    public final List<LogicalUnit.NamedPath> paths;

    /** The units that the paths lead to. */
    public final transient List<LogicalUnit> units;
    /** Other disks that are the same volume, beside those that the paths lead to. */
    public final transient List<String> alike;

    private final transient Everything host;

    private OneDisk(String name, Everything host) {
        this.name = name;
        this.host = host;
        drive = host.disks.drives.get(name);
        partitions = host.partitions.stream()
            .filter(found -> Instances.text(found, SolarisDiskPartitionProvider.diskName).equals(name))
            .collect(Collectors.toList());
        io = host.counted(name);
        instance = io == null ? null : io.instanceName();
        identity = host.disks.identity(List.of(name));
        Set<String> volume = new LinkedHashSet<>(host.disks.sameVolume(identity));
        volume.add(name);
        mounts = host.disks.mounted.stream().filter(mounted -> volume.contains(host.disks.ofDevice(mounted.device)))
            .map(host.library::withSizes).collect(Collectors.toList());
        units = host.paths.units.stream()
            .filter(unit -> unit.paths.stream().anyMatch(path -> volume.contains(host.diskOf(path))))
            .collect(Collectors.toList());
        paths = units.stream().flatMap(unit -> unit.namedPaths().stream()).collect(Collectors.toList());
        volume.remove(name);
        paths.forEach(path -> volume.remove(path.disk));
        alike = List.copyOf(volume);
    }

    /** {@return how long the host is known to have been up, in nanoseconds: when I/O was last queued; else 0} */
    public long sinceBoot() {
        return host.io.stream().mapToLong(SolarisDiskIOInformation::waitLastUpdate).filter(last -> last > 0).max()
            .orElse(0);
    }

    /**
     * {@return the bytes that went over a path of a unit, by its disk's counters; 0 when they are not known}
     *
     * @param path one of its units'
     */
    public double bytesOver(LogicalUnit.Path path) {
        SolarisDiskIOInformation counted = host.counted(host.diskOf(path));
        return counted == null ? 0 : Stream.of(counted.bytesRead(), counted.bytesWritten()).map(Counter::new)
            .filter(Counter::isKept).mapToDouble(bytes -> bytes.value().doubleValue()).sum();
    }

    /**
     * Finds a disk by its own name, a slice's or an instance's, with or without a directory, a device's physical path,
     * the mount point of a file system on it or a path below that, its serial number or designator, a logical unit's
     * "NODE LUN 2", or the world-wide name of a port that it alone is behind.
     *
     * @param asked any of these
     * @param library what is asked; what could not be is said in its log
     * @param remark is told why there is no such disk, where there is more to say
     * @return null when nothing, or not one thing, is known by that name
     */
    public static OneDisk find(String asked, Library library, Consumer<String> remark) {
        Everything host = new Everything(library);
        String name = host.resolve(asked, remark);
        return name == null ? null : new OneDisk(name, host);
    }

    /** What the host tells of all its disks. What cannot be asked is a line in the log, and empty. */
    private static final class Everything {
        private final Library library;
        private final List<TrInstance> partitions;
        private final List<SolarisDiskIOInformation> io;
        private final Map<String, SolarisDiskIOInformation> counted = new HashMap<>();
        private final Disks disks;
        private final Paths paths;

        private Everything(Library library) {
            this.library = library;
            List<TrInstance> drives = library.orNone("disks", library::disks);
            partitions = library.orNone("partitions", library::partitions);
            io = library.orNone("disk-io", library::diskIo);
            io.forEach(each -> counted.putIfAbsent(Disks.nameOf(each), each));
            disks = new Disks(drives, partitions, io, library.knownFileSystems(), library.knownIdentities());
            paths = new Paths(library.orNone("hba", () -> List.of(library.fabric(disks))).stream().findFirst()
                                  .orElseGet(() -> new Fabric(disks, new HbaCache.Hba[0], new HbaCache.Hba[0], false)));
            allPaths().map(LogicalUnit.Path::deviceName).forEach(disks::knowDevice);
        }

        private SolarisDiskIOInformation counted(String disk) {
            return counted.get(disk);
        }

        /** The disk that a path leads to, though it cannot be opened; null when it is none. */
        private String diskOf(LogicalUnit.Path path) {
            return path.disk != null ? path.disk : disks.ofEntry(path.deviceName());
        }

        private Stream<LogicalUnit.Path> allPaths() {
            return paths.units.stream().flatMap(unit -> unit.paths.stream());
        }

        /** The disk's own name; null when nothing is known by that one. */
        private String resolve(String asked, Consumer<String> remark) {
            String named = Stream.<Supplier<Stream<String>>>of(
                () -> disks.mounted.stream().filter(mounted -> mounted.mountPoint.equals(asked))
                    .map(mounted -> disks.ofDevice(mounted.device)),
                () -> Stream.of(asked.contains("/") ? "" : asked).map(disks::ofEntry),
                () -> Stream.ofNullable(disks.ofDevice(asked)),
                () -> io.stream().filter(counted -> counted.instanceName().equalsIgnoreCase(asked)).map(Disks::nameOf),
                () -> allPaths().filter(path -> isNumbered(path, asked)).map(this::diskOf))
                .flatMap(Supplier::get).filter(Objects::nonNull).findFirst().orElse(null);
            return named != null ? named : resolveElsewhere(asked, remark);
        }

        /** By what names more than a disk: an identifier, a file system, a unit, a port. */
        private String resolveElsewhere(String asked, Consumer<String> remark) {
            List<String> identified = disks.identifiedBy(asked);
            if (!identified.isEmpty()) {
                String first = identified.get(0);
                boolean oneVolume = identified.size() == 1
                    || new HashSet<>(disks.sameVolume(disks.identity(List.of(first)))).containsAll(identified);
                if (!oneVolume) {
                    remark.accept("several disks have that serial number: " + String.join(", ", identified));
                }
                return oneVolume ? first : null;
            }
            FileSystem mounted = disks.mountedAt(asked);
            if (mounted != null) {
                String disk = disks.ofDevice(mounted.device);
                if (disk == null) {
                    remark.accept((mounted.device.startsWith("/dev/md/") ? "the metadevice " : "")
                                  + mounted.device + " (" + mounted.fileSystemType + ") is mounted there");
                }
                return disk;
            }
            List<String> behind = paths.units.stream().flatMap(unit -> unit.paths.stream()
                .filter(path -> unit.isNamed(asked) || path.isAt(asked)).map(this::diskOf)).filter(Objects::nonNull)
                .distinct().collect(Collectors.toList());
            boolean oneUnit = paths.units.stream().anyMatch(
                unit -> unit.place().equalsIgnoreCase(asked.replace(":", "")));
            if (behind.size() > 1 && !oneUnit) {
                remark.accept("there are several behind it: " + String.join(", ", behind));
                return null;
            }
            return behind.isEmpty() ? null : behind.get(0);
        }

        /** Whether the path's device is called so, without its name in "/dev/rdsk". */
        private static boolean isNumbered(LogicalUnit.Path path, String asked) {
            return asked.equalsIgnoreCase("c" + path.scsiBus + "t" + path.targetId + "d" + path.scsiLun);
        }
    }
}
