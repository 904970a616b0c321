package com.kelvo.tarn.providers.solaris.processor;

/** The host's processors. */
public final class SolarisProcessorProvider {
    private SolarisProcessorProvider() {
    }

    /** The state is "online" or "offline". */
    public static final class SolarisProcessorData {
        private final int processorId;
        private final String processorType;
        private final String state;
        private final long clockMHz;

        public SolarisProcessorData(int processorId, String processorType, String state, long clockMHz) {
            this.processorId = processorId;
            this.processorType = processorType;
            this.state = state;
            this.clockMHz = clockMHz;
        }

        public int processorId() {
            return processorId;
        }

        public String processorType() {
            return processorType;
        }

        public String state() {
            return state;
        }

        public long clockMHz() {
            return clockMHz;
        }

        @Override
        public String toString() {
            return "SolarisProcessorData[processorId=" + processorId + ", processorType=" + processorType
                + ", state=" + state + ", clockMHz=" + clockMHz + "]";
        }
    }
}
