package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.TargetMappingProvider;
import java.util.ArrayList;
import java.util.List;
import java.util.Objects;
import java.util.stream.Collectors;
import javax.wbem.cim.UnsignedInt;

/** A logical unit of an array with all its paths. */
public final class LogicalUnit {
    /** One path: a target mapping, with the ports at both ends. A port that cannot be read leaves its members null. */
    public static class Path {
        /** The far end, as the near one has discovered it. */
        public final transient Fabric.RemotePort remote;
        private final transient TrInstance mapping;

        /** The adapter's place in the library's walk. */
        public final int adapter;
        /** The local port's place at the adapter. */
        public final int port;
        /** The local port's world-wide name. */
        public final String portWWN;
        /** The local port's state, by its CIM number. */
        public final UnsignedInt portState;
        /** The remote port's world-wide name. */
        public final String remotePort;
        /** The remote port's state, by its CIM number. */
        public final UnsignedInt remotePortState;
        /** The device that the path is used through. */
        public final String osDeviceName;
        /** The controller's number in device names. */
        public final UnsignedInt scsiBus;
        /** The SCSI target's number. */
        public final UnsignedInt targetId;
        /** The unit as the system numbers it. */
        public final UnsignedInt scsiLun;

        Path(Fabric.RemotePort remote, TrInstance mapping) {
            this.remote = remote;
            this.mapping = mapping;
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

        /** {@return whether the ports at both ends are online} */
        public boolean isOnline() {
            return PortStates.isOnline(portState) && PortStates.isOnline(remotePortState);
        }
    }

    /** A path that stands without its unit, and names it. */
    public static final class NamedPath extends Path {
        /** The unit's node name. */
        public final String node;
        /** The unit's number as the array exports it. */
        public final UnsignedInt lun;

        private NamedPath(LogicalUnit unit, Path path) {
            super(path.remote, path.mapping);
            node = unit.node;
            lun = unit.lun;
        }
    }

    /** The array's node name; empty when the remote port cannot be read. */
    public final String node;
    /** The unit's number as the array exports it. */
    public final UnsignedInt lun;
    /** In the order of the library's walk. */
    public final List<Path> paths = new ArrayList<>();

    /** Whether the host has the ports for two paths. */
    private final transient boolean mayHaveTwo;

    LogicalUnit(Fabric.RemotePort remote, TrInstance mapping, boolean mayHaveTwo) {
        node = Objects.requireNonNullElse(Instances.value(remote.instance, HbaPortProvider.nodeWWN), "");
        lun = Instances.number(mapping, TargetMappingProvider.exportedLUN);
        this.mayHaveTwo = mayHaveTwo;
    }

    /** {@return how many paths have both ends online} */
    public long onlinePaths() {
        return paths.stream().filter(Path::isOnline).count();
    }

    /** {@return whether less than two paths are online, on a host with the ports to have two} */
    public boolean lacksPaths() {
        return mayHaveTwo && onlinePaths() < 2;
    }

    /** {@return the paths, each naming the unit} */
    public List<NamedPath> namedPaths() {
        return paths.stream().map(path -> new NamedPath(this, path)).collect(Collectors.toList());
    }

    /** {@return what it is called, such as "50060e8000c3a2b0 LUN 5"} */
    public String place() {
        return node + " LUN " + lun;
    }
}
