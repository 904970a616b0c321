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

        /**
         * Made by the library.
         *
         * @param processorId the processor's number
         * @param processorType the instruction set, such as "sparcv9"
         * @param state "online" or "offline"
         * @param clockMHz the clock rate in MHz
         */
        public SolarisProcessorData(int processorId, String processorType, String state, long clockMHz) {
            this.processorId = processorId;
            this.processorType = processorType;
            this.state = state;
            this.clockMHz = clockMHz;
        }

        /** {@return the processor's number} */
        public int processorId() {
            return processorId;
        }

        /** {@return the instruction set, such as "sparcv9"} */
        public String processorType() {
            return processorType;
        }

        /** {@return "online" or "offline"} */
        public String state() {
            return state;
        }

        /** {@return the clock rate in MHz} */
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
