package com.kelvo.tarn.inventory;

import java.time.Duration;

/** One mounted file system. Its sizes are all null where they were not told within the limit, or the host refused. */
public final class Mount {
    /** How long a mount has to tell its sizes, unless the caller says otherwise. */
    public static final Duration LIMIT = Duration.ofSeconds(5);

    /** Where it is mounted. */
    public final String mountPoint;
    /** What is mounted: a device, or a file system of a pool. */
    public final String device;
    /** "zfs" or "vxfs". */
    public final String fileSystemType;
    /** Whether the host has answered within the limit, with its sizes or a refusal. */
    public final boolean isAnswered;
    /** Its size. */
    public final Long totalBytes;
    /** What nobody uses. */
    public final Long freeBytes;
    /** What of it a user may have; 0 also where more is in use than may be. */
    public final Long availableBytes;

    Mount(String mountPoint, String device, String fileSystemType, boolean isAnswered, long totalBytes, long freeBytes,
            long availableBytes) {
        this.mountPoint = mountPoint;
        this.device = device;
        this.fileSystemType = fileSystemType;
        this.isAnswered = isAnswered;
        this.totalBytes = known(totalBytes);
        this.freeBytes = known(freeBytes);
        this.availableBytes = known(availableBytes);
    }

    private static Long known(long bytes) {
        return bytes < 0 ? null : bytes;
    }
}
