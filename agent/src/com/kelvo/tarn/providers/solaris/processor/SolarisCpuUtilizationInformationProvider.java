package com.kelvo.tarn.providers.solaris.processor;

/** What each processor spent its time on. */
public final class SolarisCpuUtilizationInformationProvider {
    private SolarisCpuUtilizationInformationProvider() {
    }

    /** Clock ticks since boot: 32-bit counters that turn negative at 2^31. */
    public record SolarisCpuUtilizationData(
        int cpuId, long userTicks, long kernelTicks, long waitTicks, long idleTicks) {
    }
}
