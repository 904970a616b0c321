package com.kelvo.tarn.providers.solaris;

/** The host's operating system. */
public final class SolarisOperatingSystemProvider {
    private SolarisOperatingSystemProvider() {
    }

    /** Memory and swap in kilobytes of 1024 bytes. */
    public static final class SolarisOperatingSystem {
        private final String name;
        private final String hostName;
        private final String version;
        private final long totalPhysicalKB;
        private final long freePhysicalKB;
        private final long totalSwapKB;
        private final long freeSwapKB;

        /**
         * Made by the library. What the system does not tell is a blank, or 0.
         *
         * @param name the operating system's name, such as "SunOS"
         * @param hostName the host's name
         * @param version the kernel's version and, after a point, the release
         * @param totalPhysicalKB all memory, in KB of 1,024 bytes
         * @param freePhysicalKB free memory, in KB
         * @param totalSwapKB all swap space, in KB
         * @param freeSwapKB free swap space, in KB
         */
        public SolarisOperatingSystem(String name, String hostName, String version, long totalPhysicalKB,
                                      long freePhysicalKB, long totalSwapKB, long freeSwapKB) {
            this.name = name;
            this.hostName = hostName;
            this.version = version;
            this.totalPhysicalKB = totalPhysicalKB;
            this.freePhysicalKB = freePhysicalKB;
            this.totalSwapKB = totalSwapKB;
            this.freeSwapKB = freeSwapKB;
        }

        /** {@return the operating system's name, such as "SunOS"} */
        public String name() {
            return name;
        }

        /** {@return the host's name} */
        public String hostName() {
            return hostName;
        }

        /** {@return the kernel's version and, after a point, the release} */
        public String version() {
            return version;
        }

        /** {@return all memory, in KB of 1,024 bytes} */
        public long totalPhysicalKB() {
            return totalPhysicalKB;
        }

        /** {@return free memory, in KB} */
        public long freePhysicalKB() {
            return freePhysicalKB;
        }

        /** {@return all swap space, in KB} */
        public long totalSwapKB() {
            return totalSwapKB;
        }

        /** {@return free swap space, in KB} */
        public long freeSwapKB() {
            return freeSwapKB;
        }

        @Override
        public String toString() {
            return "SolarisOperatingSystem[name=" + name + ", hostName=" + hostName + ", version=" + version
                + ", totalPhysicalKB=" + totalPhysicalKB + ", freePhysicalKB=" + freePhysicalKB
                + ", totalSwapKB=" + totalSwapKB + ", freeSwapKB=" + freeSwapKB + "]";
        }
    }
}
