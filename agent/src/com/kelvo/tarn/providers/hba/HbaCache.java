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
     */
    public HbaCache(boolean leadville, boolean forceLeadville) {
        this.leadville = leadville;
        this.forceLeadville = forceLeadville;
    }

    /** An adapter; a port that cannot be read is null. */
    public static final class Hba {
        private final TrInstance instance;
        private final HbaPort[] ports;

        public Hba(TrInstance instance, HbaPort[] ports) {
            this.instance = instance;
            this.ports = ports;
        }

        public TrInstance instance() {
            return instance;
        }

        public HbaPort[] ports() {
            return ports;
        }
    }

    /** A port; its statistics are null, and so is a remote port, when they cannot be read. */
    public static final class HbaPort {
        private final TrInstance instance;
        private final TrInstance statistics;
        private final HbaDiscoveredPort[] discoveredPorts;

        public HbaPort(TrInstance instance, TrInstance statistics, HbaDiscoveredPort[] discoveredPorts) {
            this.instance = instance;
            this.statistics = statistics;
            this.discoveredPorts = discoveredPorts;
        }

        public TrInstance instance() {
            return instance;
        }

        public TrInstance statistics() {
            return statistics;
        }

        public HbaDiscoveredPort[] discoveredPorts() {
            return discoveredPorts;
        }
    }

    /** A remote port with the logical units that are reached through it. */
    public static final class HbaDiscoveredPort {
        private final TrInstance instance;
        private final TrInstance[] targetMappings;

        public HbaDiscoveredPort(TrInstance instance, TrInstance[] targetMappings) {
            this.instance = instance;
            this.targetMappings = targetMappings;
        }

        public TrInstance instance() {
            return instance;
        }

        public TrInstance[] targetMappings() {
            return targetMappings;
        }
    }

    /**
     * An adapter that cannot be read is null. The calling thread needs 320 KB of stack, besides what it has in use;
     * where less is left, nothing is done.
     *
     * @throws StackOverflowError when too little stack is left
     */
    public native Hba[] fillHbaCache(HbaClassNames names);

    /**
     * Adds to the list what the HBA library says of itself, line by line. The calling thread needs 320 KB of stack,
     * besides what it has in use; where less is left, nothing is done.
     *
     * @throws StackOverflowError when too little stack is left
     */
    public native void testHbaLibrary(List<String> lines);

    public boolean usingLeadvilleHeuristicForTargetMappings() {
        return leadville;
    }

    public boolean forceLeadvilleHeuristicForTargetMappings() {
        return forceLeadville;
    }
}
