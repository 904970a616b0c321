package com.kelvo.tarn.providers.solaris;

/** The host as a computer system. */
public final class SolarisComputerSystemProvider {
    private SolarisComputerSystemProvider() {
    }

    /** What the system information calls tell; what they do not is blank. */
    public record SolarisComputerSystem(
        String systemName, String hostName, String serialNumber, String platform, String version) {
    }
}
