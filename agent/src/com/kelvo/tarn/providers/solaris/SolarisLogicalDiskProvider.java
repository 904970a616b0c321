package com.kelvo.tarn.providers.solaris;

/** The host's mounted file systems. */
public final class SolarisLogicalDiskProvider {
    private SolarisLogicalDiskProvider() {
    }

    /** Sizes in bytes; all four are 0 unless the disk was asked for by its mount point. */
    public record SolarisLogicalDisk(
        String device, String mountPoint, String fileSystemType,
        long totalBytes, long availableBytes, long freeBytes, long blockSize) {
    }
}
