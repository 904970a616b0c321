package com.kelvo.tarn.providers.solaris;

/** The host as a computer system. */
public final class SolarisComputerSystemProvider {
    private SolarisComputerSystemProvider() {
    }

    /** What the system information calls tell; what they do not is blank. */
    public static final class SolarisComputerSystem {
        private final String systemName;
        private final String hostName;
        private final String serialNumber;
        private final String platform;
        private final String version;

        public SolarisComputerSystem(String systemName, String hostName, String serialNumber, String platform,
                                     String version) {
            this.systemName = systemName;
            this.hostName = hostName;
            this.serialNumber = serialNumber;
            this.platform = platform;
            this.version = version;
        }

        public String systemName() {
            return systemName;
        }

        public String hostName() {
            return hostName;
        }

        public String serialNumber() {
            return serialNumber;
        }

        public String platform() {
            return platform;
        }

        public String version() {
            return version;
        }

        @Override
        public String toString() {
            return "SolarisComputerSystem[systemName=" + systemName + ", hostName=" + hostName
                + ", serialNumber=" + serialNumber + ", platform=" + platform + ", version=" + version + "]";
        }
    }
}
