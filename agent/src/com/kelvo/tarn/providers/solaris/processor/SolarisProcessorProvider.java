package com.kelvo.tarn.providers.solaris.processor;

/** The host's processors. */
public final class SolarisProcessorProvider {
    private SolarisProcessorProvider() {
    }

    /** The state is "online" or "offline". */
    public record SolarisProcessorData(
        int processorId, String processorType, String state, long clockMHz) {
    }
}
