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

        /**
         * Made by the library. What the system does not tell is a blank.
         *
         * @param systemName the operating system's name, such as "SunOS"
         * @param hostName the host's name
         * @param serialNumber "unknown": the system does not tell the serial number
         * @param platform the hardware, such as "SUNW,Sun-Fire-V440"
         * @param version the kernel's version, such as "Generic_118558-21"
         */
        public SolarisComputerSystem(String systemName, String hostName, String serialNumber, String platform,
                                     String version) {
            this.systemName = systemName;
            this.hostName = hostName;
            this.serialNumber = serialNumber;
            this.platform = platform;
            this.version = version;
        }

        /** {@return the operating system's name, such as "SunOS"} */
        public String systemName() {
            return systemName;
        }

        /** {@return the host's name} */
        public String hostName() {
            return hostName;
        }

        /** {@return "unknown": the system does not tell the serial number} */
        public String serialNumber() {
            return serialNumber;
        }

        /** {@return the hardware, such as "SUNW,Sun-Fire-V440"} */
        public String platform() {
            return platform;
        }

        /** {@return the kernel's version, such as "Generic_118558-21"} */
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
