package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.TargetMappingProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.stream.Collectors;
import javax.wbem.cim.UnsignedInt;

/** A logical unit of an array with all its paths. */
public final class LogicalUnit {
    /** One path: a target mapping, with the ports at both ends. A port that cannot be read leaves its members null. */
    public static class Path {
        /** The far end, as the near one has discovered it. */
        public final transient Fabric.RemotePort remote;
        private final transient int mapping;

        /** The adapter's place in the library's walk. */
        public final int adapter;
        /** The local port's place at the adapter. */
        public final int port;
        /** The local port's world-wide name. */
        public final String portWWN;
        /** The local port's state, by its CIM number. */
        public final UnsignedInt portState;
        /** The name of the fabric that the local port is in; empty when it tells none. */
        public final String fabric;
        /** The remote port's world-wide name. */
        public final String remotePort;
        /** The remote port's state, by its CIM number. */
        public final UnsignedInt remotePortState;
        /** What the agent calls the device that the path is used through. */
        public final String osDeviceName;
        /** The drive that it is; null when there is none of that name. */
        public final String disk;
        /** The controller's number in device names. */
        public final UnsignedInt scsiBus;
        /** The SCSI target's number. */
        public final UnsignedInt targetId;
        /** The unit as the system numbers it. */
        public final UnsignedInt scsiLun;

        Path(Fabric.RemotePort remote, int place) {
            TrInstance mapping = remote.mappings.get(place);
            this.remote = remote;
            this.mapping = place;
            disk = remote.disk(place);
            fabric = remote.port.fabric();
            adapter = remote.port.adapter.index;
            port = remote.port.index;
            portWWN = Instances.value(remote.port.instance, HbaPortProvider.permanentAddress);
            portState = Instances.value(remote.port.instance, HbaPortProvider.portState);
            remotePort = Instances.value(remote.instance, HbaPortProvider.permanentAddress);
            remotePortState = Instances.value(remote.instance, HbaPortProvider.portState);
            osDeviceName = Instances.value(mapping, TargetMappingProvider.osDeviceName);
            scsiBus = Instances.value(mapping, TargetMappingProvider.scsiBus);
            targetId = Instances.value(mapping, TargetMappingProvider.targetId);
            scsiLun = Instances.value(mapping, TargetMappingProvider.scsiLun);
        }

        /** {@return what people know its device as: the drive, or what the HBA library calls it} */
        public String deviceName() {
            return remote.deviceName(mapping);
        }

        /** {@return the local port's world-wide name; its place when it tells none} */
        public String near() {
            return remote.port.name;
        }

        /** {@return the remote port's world-wide name; its place when it tells none} */
        public String far() {
            return remote.name;
        }

        /** {@return both ports, told apart from those of all other paths} */
        public String ends() {
            return remote.ends;
        }

        /**
         * {@return whether the port at either end has that world-wide name}
         *
         * @param wwn in letters of any case, with colons or without
         */
        public boolean isAt(String wwn) {
            String digits = wwn.replace(":", "");
            return digits.equalsIgnoreCase(portWWN) || digits.equalsIgnoreCase(remotePort);
        }

        /** {@return whether the ports at both ends are online} */
        public boolean isOnline() {
            return remote.isOnline;
        }
    }

    /** A path that stands without its unit, and names it. */
    public static final class NamedPath extends Path {
        /** The unit's node name. */
        public final String node;
        /** The unit's number as the array exports it. */
        public final UnsignedInt lun;
        /** The identifier of the volume behind the unit; null when none is told. */
        public final transient String designator;

        private NamedPath(LogicalUnit unit, Path path) {
            super(path.remote, path.mapping);
            node = unit.node;
            lun = unit.lun;
            designator = unit.designator;
        }
    }

    /** The array's node name; empty when the remote port cannot be read. */
    public final String node;
    /** The unit's number as the array exports it. */
    public final UnsignedInt lun;
    /** The identifier of the volume behind it, as its first drive tells that has one; null when none has. */
    public String designator;
    /** The drive of the first path that has one; null when none has. */
    public String disk;
    /** The capacity of that drive; null when it is not known. */
    public Long sizeBytes;
    /** Where file systems on any of its drives, or of its pseudo devices, are mounted. */
    public List<String> mounts;
    /** What the label of that drive calls it; empty when it is not known. */
    public transient String driveType = "";
    /** What that first drive is, or the first of which anything is told; null when nothing is. */
    public transient Identity identity;
    /** The disks that no path leads to, and that are the same volume. */
    public transient List<String> pseudoDevices = List.of();
    /** In the order of the library's walk. */
    public final List<Path> paths = new ArrayList<>();

    /** Known once it has all paths. */
    private transient List<Path> distinct;
    private transient List<Path> online;
    /** Whether the host has the ports for two paths. */
    private final transient boolean mayHaveTwo;

    LogicalUnit(Fabric.RemotePort remote, TrInstance mapping, boolean mayHaveTwo) {
        node = nodeOf(remote);
        lun = lunOf(mapping);
        this.mayHaveTwo = mayHaveTwo;
    }

    /**
     * {@return the name of the node that presents units there; empty when the remote port cannot be read}
     *
     * @param remote the far end of paths
     */
    public static String nodeOf(Fabric.RemotePort remote) {
        return Objects.requireNonNullElse(Instances.value(remote.instance, HbaPortProvider.nodeWWN), "");
    }

    static UnsignedInt lunOf(TrInstance mapping) {
        return Instances.number(mapping, TargetMappingProvider.exportedLUN);
    }

    /** No path comes any more: learns what its drives tell. */
    void hasAllPaths(Disks known) {
        Map<String, Path> byEnds = new LinkedHashMap<>();
        for (Path path : paths) {
            Path other = byEnds.putIfAbsent(path.ends(), path);
            if (other != null && !other.isOnline()) {
                byEnds.put(path.ends(), path);
            }
        }
        distinct = List.copyOf(byEnds.values());
        online = new ArrayList<>(distinct);
        online.removeIf(path -> !path.isOnline());
        List<String> drives = disks();
        disk = drives.isEmpty() ? null : drives.get(0);
        long capacity = disk == null ? 0 : Disks.capacity(known.drives.get(disk));
        sizeBytes = capacity == 0 ? null : capacity;
        driveType = disk == null ? "" : Instances.text(known.drives.get(disk), SolarisDiskDriveProvider.diskType);
        identity = known.identity(drives);
        designator = identity == null ? null : identity.designator;
        Set<String> all = new LinkedHashSet<>(drives);
        all.addAll(known.sameVolume(identity));
        mounts = known.mountPointsOn(all);
        drives.forEach(all::remove);
        pseudoDevices = new ArrayList<>(all);
    }

    /** {@return the drives that its paths lead to} */
    public List<String> disks() {
        Set<String> drives = new LinkedHashSet<>();
        paths.forEach(path -> drives.add(path.disk));
        drives.remove(null);
        return new ArrayList<>(drives);
    }

    /** {@return the paths; those between the same two ports, of which an HBA library may list several, once} */
    public List<Path> distinctPaths() {
        return distinct;
    }

    /** {@return of the distinct paths, those that have both ends online} */
    public List<Path> online() {
        return online;
    }

    /** {@return how many of the distinct paths have both ends online} */
    public long onlinePaths() {
        return online.size();
    }

    /** {@return whether less than two paths are online, on a host with the ports to have two} */
    public boolean lacksPaths() {
        return mayHaveTwo && onlinePaths() < 2;
    }

    /** {@return the paths, each naming the unit} */
    public List<NamedPath> namedPaths() {
        return paths.stream().map(path -> new NamedPath(this, path)).collect(Collectors.toList());
    }

    /**
     * {@return whether that is what it, or its array, is called}
     *
     * @param name in letters of any case, with colons or without
     */
    public boolean isNamed(String name) {
        String plain = name.replace(":", "");
        return plain.equalsIgnoreCase(node) || plain.equalsIgnoreCase(place());
    }

    /**
     * {@return whether it is meant by a name: its own or its array's, a port's, a disk's or a mount point's, its
     * volume's serial number or designator}
     *
     * @param name in letters of any case, but for a mount point
     */
    public boolean answersTo(String name) {
        String device = DeviceNames.withoutDirectory(name);
        List<String> disks =
            List.of(device, DeviceNames.withoutSlice(device), DeviceNames.withoutLetter(device));
        return isNamed(name) || mounts.contains(name) || Identifiers.isNamed(identity, name)
            || pseudoDevices.stream().anyMatch(pseudo -> disks.stream().anyMatch(pseudo::equalsIgnoreCase))
            || paths.stream().anyMatch(path -> path.isAt(name) || disks.stream().limit(2).anyMatch(
                disk -> disk.equalsIgnoreCase(path.deviceName()) || disk.equalsIgnoreCase(path.disk)
                    || disk.equalsIgnoreCase(path.osDeviceName)));
    }

    /** {@return what it is called, such as "50060e8000c3a2b0 LUN 5"} */
    public String place() {
        return node + " LUN " + lun;
    }
}
