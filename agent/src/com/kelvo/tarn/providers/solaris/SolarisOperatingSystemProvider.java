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

        public String name() {
            return name;
        }

        public String hostName() {
            return hostName;
        }

        public String version() {
            return version;
        }

        public long totalPhysicalKB() {
            return totalPhysicalKB;
        }

        public long freePhysicalKB() {
            return freePhysicalKB;
        }

        public long totalSwapKB() {
            return totalSwapKB;
        }

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
