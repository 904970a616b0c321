package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.NativeLibrary;
import com.kelvo.tarn.TrInstance;
import java.util.List;

/** The host's Fibre Channel adapters with everything behind them. */
public final class HbaCache {
    static {
        NativeLibrary.load();
    }

    private final boolean leadville;
    private final boolean forceLeadville;

    /**
     * Chooses how OS device names are made: by the Leadville heuristic, which takes what follows the last "/" and drops
     * the "s2" slice, for names in "/dev/rdsk/", or, forced, for every name.
     *
     * @param leadville whether the heuristic is used
     * @param forceLeadville whether it is used for every name
     */
    public HbaCache(boolean leadville, boolean forceLeadville) {
        this.leadville = leadville;
        this.forceLeadville = forceLeadville;
    }

    /** An adapter; a port that cannot be read is null. */
    public static final class Hba {
        private final TrInstance instance;
        private final HbaPort[] ports;

        /**
         * Made by the library.
         *
         * @param instance the adapter, or null
         * @param ports its ports, any of which may be null
         */
        public Hba(TrInstance instance, HbaPort[] ports) {
            this.instance = instance;
            this.ports = ports;
        }

        /** {@return the adapter, as {@link HostBusAdapterProvider} describes it; null when it cannot be read} */
        public TrInstance instance() {
            return instance;
        }

        /** {@return its ports, by index; null for one that cannot be read} */
        public HbaPort[] ports() {
            return ports;
        }
    }

    /** A port; its statistics are null, and so is a remote port, when they cannot be read. */
    public static final class HbaPort {
        private final TrInstance instance;
        private final TrInstance statistics;
        private final HbaDiscoveredPort[] discoveredPorts;

        /**
         * Made by the library.
         *
         * @param instance the port, or null
         * @param statistics its counters, or null
         * @param discoveredPorts the remote ports that it sees, any of which may be null
         */
        public HbaPort(TrInstance instance, TrInstance statistics, HbaDiscoveredPort[] discoveredPorts) {
            this.instance = instance;
            this.statistics = statistics;
            this.discoveredPorts = discoveredPorts;
        }

        /** {@return the port, as {@link HbaPortProvider} describes it; null when it cannot be read} */
        public TrInstance instance() {
            return instance;
        }

        /** {@return its counters, as {@link FCPortStatisticsProvider} describes them; null when they cannot be read} */
        public TrInstance statistics() {
            return statistics;
        }

        /** {@return the remote ports that it sees; null for one that cannot be read} */
        public HbaDiscoveredPort[] discoveredPorts() {
            return discoveredPorts;
        }
    }

    /** A remote port with the logical units that are reached through it. */
    public static final class HbaDiscoveredPort {
        private final TrInstance instance;
        private final TrInstance[] targetMappings;

        /**
         * Made by the library.
         *
         * @param instance the remote port, or null
         * @param targetMappings the logical units behind it, any of which may be null
         */
        public HbaDiscoveredPort(TrInstance instance, TrInstance[] targetMappings) {
            this.instance = instance;
            this.targetMappings = targetMappings;
        }

        /** {@return the remote port, as {@link HbaDiscoveredPortProvider} describes it; null when it cannot be read} */
        public TrInstance instance() {
            return instance;
        }

        /**
         * {@return the logical units behind it, as {@link TargetMappingProvider} describes them; null for one that
         * cannot be made}
         */
        public TrInstance[] targetMappings() {
            return targetMappings;
        }
    }

    /**
     * Asks the HBA library for everything. The calling thread needs 320 KB of stack, besides what it has in use; where
     * less is left, nothing is done.
     *
     * @param names the classes of the instances
     * @return the adapters; null for one that cannot be read
     * @throws StackOverflowError when too little stack is left
     */
    public native Hba[] fillHbaCache(HbaClassNames names);

    /**
     * Adds to the list what the HBA library says of itself, line by line. The calling thread needs 320 KB of stack,
     * besides what it has in use; where less is left, nothing is done.
     *
     * @param lines what the lines are added to
     * @throws StackOverflowError when too little stack is left
     */
    public native void testHbaLibrary(List<String> lines);

    /** {@return whether the Leadville heuristic is used for names in "/dev/rdsk/"} */
    public boolean usingLeadvilleHeuristicForTargetMappings() {
        return leadville;
    }

    /** {@return whether it is used for every name} */
    public boolean forceLeadvilleHeuristicForTargetMappings() {
        return forceLeadville;
    }
}
