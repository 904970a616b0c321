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

        public String device() {
            return device;
        }

        public String mountPoint() {
            return mountPoint;
        }

        public String fileSystemType() {
            return fileSystemType;
        }

        public long totalBytes() {
            return totalBytes;
        }

        public long availableBytes() {
            return availableBytes;
        }

        public long freeBytes() {
            return freeBytes;
        }

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
