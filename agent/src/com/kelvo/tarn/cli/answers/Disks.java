package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import java.util.ArrayList;
import java.util.Collection;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Optional;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.stream.Collectors;

/** The disks of a host, and which of them a name leads to. */
public final class Disks {
    /** Bytes in a sector, of disk geometries and partition tables alike. */
    public static final int SECTOR = 512;

    /** Where nothing is known of any. */
    public static final Disks NONE = new Disks(List.of(), List.of(), List.of(), List.of(), List.of());

    private static final String DEVICES = "/devices";
    private static final List<TrProperty> GEOMETRY = List.of(
        SolarisDiskDriveProvider.heads, SolarisDiskDriveProvider.sectorsPerTrack,
        SolarisDiskDriveProvider.dataCylinders);

    /** The drives that can be opened, by name. */
    final Map<String, TrInstance> drives = new LinkedHashMap<>();
    /** The mounted file systems. */
    final List<FileSystem> mounted;

    /** Each disk by its name, in lower case too, and the disk of each slice and of each physical path. */
    private final Map<String, String> names = new HashMap<>();
    private final Map<String, String> slices = new HashMap<>();
    private final Map<String, String> devicePaths = new HashMap<>();
    private final Map<String, List<String>> mountPoints = new HashMap<>();
    /** The disk of the first that is mounted there; null for one that is on none. */
    private final Map<String, String> mountedOn = new HashMap<>();
    private final Map<String, Identity> identities = new LinkedHashMap<>();
    /** The disks that are the volume of a designator: a device for each path to it, and pseudo devices over them. */
    private final Map<String, List<String>> volumes = new HashMap<>();
    /** By the HBA library's name for it: the drive, or nothing. The paths to a unit mostly have the same. */
    private final Map<String, Optional<String>> mapped = new ConcurrentHashMap<>();

    /** What a host tells of its disks; the slices are needed for slices that are not called like their disk. */
    Disks(List<TrInstance> drives, List<TrInstance> partitions, List<SolarisDiskIOInformation> io,
          List<FileSystem> mounted, List<Identity> identities) {
        this.mounted = mounted;
        for (Identity identity : identities) {
            this.identities.put(identity.disk, identity);
            if (identity.designator != null) {
                volumes.computeIfAbsent(identity.designator, added -> new ArrayList<>()).add(identity.disk);
            }
        }
        for (TrInstance drive : drives) {
            String name = Instances.text(drive, SolarisDiskDriveProvider.name);
            this.drives.put(name, drive);
            know(name);
            devicePaths.put(Instances.text(drive, SolarisDiskDriveProvider.deviceIdentifier), name);
        }
        io.forEach(counted -> know(nameOf(counted)));
        for (TrInstance partition : partitions) {
            String disk = Instances.text(partition, SolarisDiskPartitionProvider.diskName);
            know(disk);
            slices.put(Instances.text(partition, SolarisDiskPartitionProvider.name), disk);
        }
        mounted.stream().map(each -> each.device).filter(DeviceNames::hasDirectory).forEach(this::knowDevice);
        for (FileSystem each : mounted) {
            String disk = ofDevice(each.device);
            if (!mountedOn.containsKey(each.mountPoint)) {
                mountedOn.put(each.mountPoint, disk);
            }
            if (disk != null) {
                List<String> there = mountPoints.computeIfAbsent(disk, added -> new ArrayList<>());
                if (!there.contains(each.mountPoint)) {
                    there.add(each.mountPoint);
                }
            }
        }
    }

    /** What the kernel counts for a disk that has no entry in "/dev/dsk" is called what the kernel calls it. */
    static String nameOf(SolarisDiskIOInformation counted) {
        return counted.diskName().isEmpty() ? counted.instanceName() : counted.diskName();
    }

    /**
     * {@return a drive's capacity in bytes, computed from its geometry; 0 when that is not known}
     *
     * @param drive an instance
     */
    public static long capacity(TrInstance drive) {
        long capacity = SECTOR;
        for (TrProperty figure : GEOMETRY) {
            capacity *= Instances.number(drive, figure).longValue();
        }
        return capacity;
    }

    /** There is a disk of that name, or a slice of one. */
    void knowDevice(String device) {
        String entry = DeviceNames.withoutDirectory(device);
        if (!entry.contains("/") && ofEntry(entry) == null) {
            know(DeviceNames.withoutSlice(entry));
        }
    }

    private void know(String name) {
        if (!name.isEmpty() && !name.equals(names.put(name, name))) {
            names.putIfAbsent(name.toLowerCase(Locale.ROOT), name);
        }
    }

    /** The disk that is called so, or has a slice that is; null when there is none. */
    String ofEntry(String entry) {
        String disk = ofName(entry);
        disk = disk == null ? ofName(slices.getOrDefault(entry, "")) : disk;
        disk = disk == null ? ofName(DeviceNames.withoutSlice(entry)) : disk;
        return disk == null ? ofName(DeviceNames.withoutLetter(entry)) : disk;
    }

    private String ofName(String name) {
        String disk = names.get(name);
        return disk == null ? names.get(name.toLowerCase(Locale.ROOT)) : disk;
    }

    /** The disk that a path in "/dev/dsk", "/dev/rdsk" or "/devices" leads to, or null. */
    String ofDevice(String device) {
        return device.startsWith(DEVICES)
            ? devicePaths.get(device.substring(DEVICES.length(), endOfPath(device)))
            : DeviceNames.hasDirectory(device) ? ofEntry(DeviceNames.withoutDirectory(device)) : null;
    }

    /** Where the minor node's name begins, ":a", or the end. */
    private static int endOfPath(String device) {
        int colon = device.indexOf(':', device.lastIndexOf('/') + 1);
        return colon < 0 ? device.length() : colon;
    }

    /** The drive that a target mapping leads to, by the HBA library's name for it; or null. */
    String ofMapping(String ownName) {
        Optional<String> drive = mapped.get(ownName);
        if (drive == null) {
            drive = driveCalled(ownName);
            mapped.put(ownName, drive);
        }
        return drive.orElse(null);
    }

    /** The drive of that name, or null. */
    String driveNamed(String name) {
        return drives.containsKey(name) ? name : null;
    }

    private Optional<String> driveCalled(String ownName) {
        String named = ownName.startsWith(DEVICES) ? ofDevice(ownName) : ofEntry(DeviceNames.withoutDirectory(ownName));
        return Optional.ofNullable(named).filter(drives::containsKey);
    }

    /** What a disk is; null when that is not told. */
    Identity identity(String disk) {
        return identities.get(disk);
    }

    /** What the first of these disks is that has a designator, or else the first of which anything is told; or null. */
    Identity identity(Collection<String> disks) {
        Identity first = null;
        for (String disk : disks) {
            Identity told = identities.get(disk);
            if (told != null && told.designator != null) {
                return told;
            }
            first = first == null ? told : first;
        }
        return first;
    }

    /** The disks that are the same volume; none for null, or where no designator is told. */
    List<String> sameVolume(Identity identity) {
        return identity == null ? List.of() : volumes.getOrDefault(identity.designator, List.of());
    }

    /** The disks that have that serial number or that designator. */
    List<String> identifiedBy(String name) {
        return identities.values().stream().filter(identity -> Identifiers.isNamed(identity, name))
            .map(identity -> identity.disk).collect(Collectors.toList());
    }

    /** Where file systems on these disks are mounted. */
    List<String> mountPointsOn(Collection<String> disks) {
        Set<String> there = new LinkedHashSet<>();
        disks.forEach(disk -> there.addAll(mountPoints.getOrDefault(disk, List.of())));
        return new ArrayList<>(there);
    }

    /** The disk that the file system is on that is mounted there, or null. */
    String diskAt(String mountPoint) {
        return mountedOn.get(mountPoint);
    }

    /** The mount point at or above a path, with what is mounted there; null when the path is no such. */
    FileSystem mountedAt(String path) {
        boolean isDevice = path.startsWith("/dev/") || path.startsWith(DEVICES + "/");
        return mounted.stream().filter(each -> {
            String mountPoint = each.mountPoint;
            return mountPoint.equals(path)
                || !isDevice && path.startsWith(mountPoint.endsWith("/") ? mountPoint : mountPoint + "/");
        }).max(Comparator.comparingInt(each -> each.mountPoint.length())).orElse(null);
    }
}
