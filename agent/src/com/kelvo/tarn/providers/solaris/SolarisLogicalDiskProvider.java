package com.kelvo.tarn.providers.solaris;

/** The host's mounted file systems. */
public final class SolarisLogicalDiskProvider {
    private SolarisLogicalDiskProvider() {
    }

    /** Sizes in bytes; all four are 0 unless the disk was asked for by its mount point. */
    public static final class SolarisLogicalDisk {
        private final String device;
        private final String mountPoint;
        private final String fileSystemType;
        private final long totalBytes;
        private final long availableBytes;
        private final long freeBytes;
        private final long blockSize;

        /**
         * Made by the library. The sizes, 64 bits without a sign, are 0 in a listing and where the system does not
         * tell them.
         *
         * @param device the block device, or the remote path
         * @param mountPoint where it is mounted
         * @param fileSystemType "ufs" or "nfs"
         * @param totalBytes its size in bytes
         * @param availableBytes the bytes that any user may still fill
         * @param freeBytes the bytes that are free, those kept for root among them
         * @param blockSize the preferred size of a transfer in bytes
         */
        public SolarisLogicalDisk(String device, String mountPoint, String fileSystemType, long totalBytes,
                                  long availableBytes, long freeBytes, long blockSize) {
            this.device = device;
            this.mountPoint = mountPoint;
            this.fileSystemType = fileSystemType;
            this.totalBytes = totalBytes;
            this.availableBytes = availableBytes;
            this.freeBytes = freeBytes;
            this.blockSize = blockSize;
        }

        /** {@return the block device, or the remote path} */
        public String device() {
            return device;
        }

        /** {@return where it is mounted} */
        public String mountPoint() {
            return mountPoint;
        }

        /** {@return "ufs" or "nfs"} */
        public String fileSystemType() {
            return fileSystemType;
        }

        /** {@return its size in bytes, without a sign; 0 in a listing} */
        public long totalBytes() {
            return totalBytes;
        }

        /** {@return the bytes that any user may still fill; 0 in a listing} */
        public long availableBytes() {
            return availableBytes;
        }

        /** {@return the bytes that are free, those kept for root among them; 0 in a listing} */
        public long freeBytes() {
            return freeBytes;
        }

        /** {@return the preferred size of a transfer in bytes; 0 in a listing} */
        public long blockSize() {
            return blockSize;
        }

        @Override
        public String toString() {
            return "SolarisLogicalDisk[device=" + device + ", mountPoint=" + mountPoint
                + ", fileSystemType=" + fileSystemType + ", totalBytes=" + totalBytes
                + ", availableBytes=" + availableBytes + ", freeBytes=" + freeBytes + ", blockSize=" + blockSize + "]";
        }
    }
}
