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

        public SolarisCpuUtilizationData(int cpuId, long userTicks, long kernelTicks, long waitTicks, long idleTicks) {
            this.cpuId = cpuId;
            this.userTicks = userTicks;
            this.kernelTicks = kernelTicks;
            this.waitTicks = waitTicks;
            this.idleTicks = idleTicks;
        }

        public int cpuId() {
            return cpuId;
        }

        public long userTicks() {
            return userTicks;
        }

        public long kernelTicks() {
            return kernelTicks;
        }

        public long waitTicks() {
            return waitTicks;
        }

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
