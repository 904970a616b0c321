package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.inventory.Mount;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import java.time.Duration;

/**
 * A mounted file system: one of the agent's kinds, ufs and nfs, or of those that the inventory adds, zfs and vxfs. Its
 * sizes are in bytes. Of the agent's kinds they are 0 in a listing and where the system does not tell them; of the
 * inventory's, null.
 */
public final class FileSystem {
    /** The block device, the remote path, or the file system of a pool. */
    public final String device;
    /** Where it is mounted. */
    public final String mountPoint;
    /** Its kind. */
    public final String fileSystemType;
    /** Its size; one beyond 2^63 is negative. */
    public final Long totalBytes;
    /** What any user may still fill; what is overdrawn is negative, or none. */
    public final Long availableBytes;
    /** What is free, that which is kept for root included. */
    public final Long freeBytes;
    /** The preferred size of a transfer; null of the inventory's kinds. */
    public final Long blockSize;

    /** How long it had to answer, and has not; null for one that has. */
    public final transient Duration silence;

    FileSystem(SolarisLogicalDisk disk) {
        device = disk.device();
        mountPoint = disk.mountPoint();
        fileSystemType = disk.fileSystemType();
        totalBytes = disk.totalBytes();
        availableBytes = disk.availableBytes();
        freeBytes = disk.freeBytes();
        blockSize = disk.blockSize();
        silence = null;
    }

    FileSystem(Mount mount, Duration limit) {
        device = mount.device;
        mountPoint = mount.mountPoint;
        fileSystemType = mount.fileSystemType;
        totalBytes = mount.totalBytes;
        availableBytes = mount.availableBytes;
        freeBytes = mount.freeBytes;
        blockSize = null;
        silence = mount.isAnswered ? null : limit;
    }

    /** {@return whether the inventory tells of it, and not the agent} */
    public boolean isOfInventory() {
        return blockSize == null;
    }

    /** {@return whether its sizes were told} */
    public boolean isSized() {
        return totalBytes != null
            && (isOfInventory() || (totalBytes | availableBytes | freeBytes | blockSize) != 0);
    }
}
