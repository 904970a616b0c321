package com.kelvo.tarn.providers.solaris;

/** The kernel's I/O counters of each disk. */
public final class SolarisDiskIOInformationProvider {
    private SolarisDiskIOInformationProvider() {
    }

    /** Bytes since boot; times in nanoseconds. The disk name is empty when the instance has none. */
    public static final class SolarisDiskIOInformation {
        private final String instanceName;
        private final String diskName;
        private final long bytesRead;
        private final long bytesWritten;
        private final long waitLastUpdate;
        private final long runTime;

        public SolarisDiskIOInformation(String instanceName, String diskName, long bytesRead, long bytesWritten,
                                        long waitLastUpdate, long runTime) {
            this.instanceName = instanceName;
            this.diskName = diskName;
            this.bytesRead = bytesRead;
            this.bytesWritten = bytesWritten;
            this.waitLastUpdate = waitLastUpdate;
            this.runTime = runTime;
        }

        public String instanceName() {
            return instanceName;
        }

        public String diskName() {
            return diskName;
        }

        public long bytesRead() {
            return bytesRead;
        }

        public long bytesWritten() {
            return bytesWritten;
        }

        public long waitLastUpdate() {
            return waitLastUpdate;
        }

        public long runTime() {
            return runTime;
        }

        @Override
        public String toString() {
            return "SolarisDiskIOInformation[instanceName=" + instanceName + ", diskName=" + diskName
                + ", bytesRead=" + bytesRead + ", bytesWritten=" + bytesWritten
                + ", waitLastUpdate=" + waitLastUpdate + ", runTime=" + runTime + "]";
        }
    }
}
