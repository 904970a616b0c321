package com.kelvo.tarn.providers.solaris;

/** The host's operating system. */
public final class SolarisOperatingSystemProvider {
    private SolarisOperatingSystemProvider() {
    }

    /** Memory and swap in kilobytes of 1024 bytes. */
    public record SolarisOperatingSystem(
        String name, String hostName, String version,
        long totalPhysicalKB, long freePhysicalKB, long totalSwapKB, long freeSwapKB) {
    }
}
