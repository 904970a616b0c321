package com.kelvo.tarn.providers.solaris.processor;

/** What each processor spent its time on. */
public final class SolarisCpuUtilizationInformationProvider {
    private SolarisCpuUtilizationInformationProvider() {
    }

    /** Clock ticks since boot: 32-bit counters that turn negative at 2^31. */
    public static final class SolarisCpuUtilizationData {
        private final int cpuId;
        private final long userTicks;
        private final long kernelTicks;
        private final long waitTicks;
        private final long idleTicks;

        /**
         * Made by the library. The kernel counts ticks of its clock since boot in unsigned 32 bits; these are
         * the same bits with a sign.
         *
         * @param cpuId the processor's number
         * @param userTicks the ticks spent in programs
         * @param kernelTicks the ticks spent in the kernel
         * @param waitTicks the ticks spent waiting for I/O
         * @param idleTicks the ticks spent idle
         */
        public SolarisCpuUtilizationData(int cpuId, long userTicks, long kernelTicks, long waitTicks, long idleTicks) {
            this.cpuId = cpuId;
            this.userTicks = userTicks;
            this.kernelTicks = kernelTicks;
            this.waitTicks = waitTicks;
            this.idleTicks = idleTicks;
        }

        /** {@return the processor's number} */
        public int cpuId() {
            return cpuId;
        }

        /** {@return the ticks spent in programs} */
        public long userTicks() {
            return userTicks;
        }

        /** {@return the ticks spent in the kernel} */
        public long kernelTicks() {
            return kernelTicks;
        }

        /** {@return the ticks spent waiting for I/O} */
        public long waitTicks() {
            return waitTicks;
        }

        /** {@return the ticks spent idle} */
        public long idleTicks() {
            return idleTicks;
        }

        @Override
        public String toString() {
            return "SolarisCpuUtilizationData[cpuId=" + cpuId + ", userTicks=" + userTicks
                + ", kernelTicks=" + kernelTicks + ", waitTicks=" + waitTicks + ", idleTicks=" + idleTicks + "]";
        }
    }
}
