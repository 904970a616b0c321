package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import com.kelvo.tarn.providers.hba.TargetMappingProvider;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashSet;
import java.util.Iterator;
import java.util.List;
import java.util.Set;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import javax.wbem.cim.UnsignedInt;

/**
 * What the host sees of its storage network, in the order of the library's walk. Each thing knows what it stands
 * under. What cannot be read is there all the same: without an instance, and without anything below it when the
 * library has not even a record.
 */
public final class Fabric {
    /** A host bus adapter. */
    public static final class Adapter {
        /** Its place in the walk, from 0. */
        public final int index;
        /** Null: the adapter cannot be read. */
        public final TrInstance instance;
        /** By index. */
        public final List<Port> ports = new ArrayList<>();

        private Adapter(int index, HbaCache.Hba record) {
            this.index = index;
            instance = record == null ? null : record.instance();
            for (HbaCache.HbaPort port : record == null ? new HbaCache.HbaPort[0] : record.ports()) {
                ports.add(new Port(this, ports.size(), port));
            }
        }

        /** {@return what it is called, such as "adapter 0"} */
        public String place() {
            return "adapter " + index;
        }
    }

    /** A port of an adapter. */
    public static final class Port {
        /** What it is a port of. */
        public final Adapter adapter;
        /** Its place at the adapter, from 0. */
        public final int index;
        /** Whether the library has a record of it; without one there are no statistics and no remote ports. */
        public final boolean recorded;
        /** Null: the port cannot be read. */
        public final TrInstance instance;
        /** Null: its counters cannot be read. */
        public final TrInstance statistics;
        /** What it has discovered, by index. */
        public final List<RemotePort> remotePorts = new ArrayList<>();
        /** Its world-wide name; its place when it tells none. */
        final String name;
        /** The fabric's name; empty when it tells none. */
        private final String fabric;

        private Port(Adapter adapter, int index, HbaCache.HbaPort record) {
            this.adapter = adapter;
            this.index = index;
            recorded = record != null;
            instance = recorded ? record.instance() : null;
            statistics = recorded ? record.statistics() : null;
            name = nameOf(instance, place());
            fabric = Instances.name(instance, HbaPortProvider.fabricName);
            for (HbaCache.HbaDiscoveredPort remote :
                 recorded ? record.discoveredPorts() : new HbaCache.HbaDiscoveredPort[0]) {
                remotePorts.add(new RemotePort(this, remotePorts.size(), remote));
            }
        }

        /** {@return what it is called, such as "adapter 0 port 1"} */
        public String place() {
            return adapter.place() + " port " + index;
        }

        /** {@return the name of the fabric that it is in; empty when it tells none} */
        public String fabric() {
            return fabric;
        }
    }

    /** A remote port as one of the host's ports has discovered it. */
    public static final class RemotePort {
        /** What has discovered it. */
        public final Port port;
        /** Its place among what the port has discovered, from 0. */
        public final int index;
        /** Null: the remote port cannot be read. */
        public final TrInstance instance;
        /** The logical units that are reached through both ports; null for one that cannot be read. */
        public final List<TrInstance> mappings;
        /** Its world-wide name; its place when it tells none. */
        final String name;
        /** Both ports' names: those of all paths between them. */
        final String ends;
        /** Whether both ports are online. */
        final boolean isOnline;
        /** What people know the device of each as, and the drive that it leads to, or null. */
        private final List<String> devices = new ArrayList<>();
        private final List<String> disks = new ArrayList<>();

        private RemotePort(Port port, int index, HbaCache.HbaDiscoveredPort record) {
            this.port = port;
            this.index = index;
            instance = record == null ? null : record.instance();
            mappings = record == null ? List.of() : Arrays.asList(record.targetMappings());
            name = nameOf(instance, place());
            ends = port.name + " " + name;
            isOnline = PortStates.isOnline(port.instance) && PortStates.isOnline(instance);
        }

        /** Names the mappings as another view of the same remote port does; null, or of another size, is none. */
        private void name(Disks known, RemotePort own, boolean asAgent) {
            for (int i = 0; i < mappings.size(); i++) {
                boolean sameSize = own != null && own.mappings.size() == mappings.size();
                TrInstance mapping = mappings.get(i);
                TrInstance named = sameSize && own.mappings.get(i) != null ? own.mappings.get(i) : mapping;
                String device = named == null ? "" : Instances.text(named, TargetMappingProvider.osDeviceName);
                String disk = known.ofMapping(device);
                if (disk == null && mapping != null) {
                    disk = known.driveNamed("c" + Instances.number(mapping, TargetMappingProvider.scsiBus)
                                            + "t" + Instances.number(mapping, TargetMappingProvider.targetId)
                                            + "d" + Instances.number(mapping, TargetMappingProvider.scsiLun));
                }
                disks.add(disk);
                devices.add(asAgent && mapping != null ? Instances.text(mapping, TargetMappingProvider.osDeviceName)
                    : disk != null ? disk : DeviceNames.withoutSlice(DeviceNames.withoutDirectory(device)));
            }
        }

        /**
         * {@return the drive that a mapping leads to; null when there is none}
         *
         * @param mapping its place among the mappings
         */
        public String disk(int mapping) {
            return disks.get(mapping);
        }

        /**
         * {@return what people are shown as the device of a mapping: its drive, or what the HBA library calls it; or
         * what the agent calls it, if that was chosen}
         *
         * @param mapping its place among the mappings
         */
        public String deviceName(int mapping) {
            return devices.get(mapping);
        }

        /** {@return the numbers under which it exports the units that are reached through both ports} */
        public Set<UnsignedInt> exportedLuns() {
            Set<UnsignedInt> luns = new HashSet<>();
            for (TrInstance mapping : mappings) {
                if (mapping != null) {
                    luns.add(LogicalUnit.lunOf(mapping));
                }
            }
            return luns;
        }

        /** {@return what it is called, such as "adapter 0 port 1 remote port 2"} */
        public String place() {
            return port.place() + " remote port " + index;
        }
    }

    private static String nameOf(TrInstance port, String place) {
        String wwn = Instances.name(port, HbaPortProvider.permanentAddress);
        return wwn.isEmpty() ? place : wwn;
    }

    /** By index. */
    public final List<Adapter> adapters = new ArrayList<>();
    /** The disks that the mappings lead to. */
    final Disks disks;

    private Fabric(Disks disks, HbaCache.Hba... cache) {
        this.disks = disks;
        for (HbaCache.Hba adapter : cache) {
            adapters.add(new Adapter(adapters.size(), adapter));
        }
    }

    /**
     * Takes what a fill answered.
     *
     * @param disks those of the host
     * @param cache the adapters; null for one that cannot be read
     * @param ownNames the same of a fill in which device names are those of the HBA library
     * @param asAgent whether people are shown the device names of the first, and not disks
     */
    public Fabric(Disks disks, HbaCache.Hba[] cache, HbaCache.Hba[] ownNames, boolean asAgent) {
        this(disks, cache);
        Iterator<RemotePort> own = (cache == ownNames ? this : new Fabric(disks, ownNames)).remotePorts().iterator();
        remotePorts().forEach(remote -> remote.name(disks, own.hasNext() ? own.next() : null, asAgent));
    }

    /** {@return all ports of all adapters} */
    public List<Port> ports() {
        return adapters.stream().flatMap(adapter -> adapter.ports.stream()).collect(Collectors.toList());
    }

    /** {@return all remote ports; one that several ports have discovered is there once for each} */
    public Stream<RemotePort> remotePorts() {
        return ports().stream().flatMap(port -> port.remotePorts.stream());
    }
}
