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

        /**
         * Made by the library. The counters are the kernel's, 64 bits without a sign.
         *
         * @param instanceName the kernel's name, such as "sd0"
         * @param diskName the system's name, such as "c0t0d0", or an empty text
         * @param bytesRead the bytes read since boot
         * @param bytesWritten the bytes written since boot
         * @param waitLastUpdate when the wait queue last changed, in nanoseconds of the kernel's clock
         * @param runTime how long requests were being served since boot, in nanoseconds
         */
        public SolarisDiskIOInformation(String instanceName, String diskName, long bytesRead, long bytesWritten,
                                        long waitLastUpdate, long runTime) {
            this.instanceName = instanceName;
            this.diskName = diskName;
            this.bytesRead = bytesRead;
            this.bytesWritten = bytesWritten;
            this.waitLastUpdate = waitLastUpdate;
            this.runTime = runTime;
        }

        /** {@return the kernel's name, such as "sd0"} */
        public String instanceName() {
            return instanceName;
        }

        /** {@return the system's name, such as "c0t0d0", or an empty text} */
        public String diskName() {
            return diskName;
        }

        /** {@return the bytes read since boot} */
        public long bytesRead() {
            return bytesRead;
        }

        /** {@return the bytes written since boot} */
        public long bytesWritten() {
            return bytesWritten;
        }

        /** {@return when the wait queue last changed, in nanoseconds of the kernel's clock} */
        public long waitLastUpdate() {
            return waitLastUpdate;
        }

        /** {@return how long requests were being served since boot, in nanoseconds} */
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
