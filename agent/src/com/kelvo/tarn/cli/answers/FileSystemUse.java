package com.kelvo.tarn.cli.answers;

import java.math.BigInteger;

/** How full a file system is, as df computes it: what nobody may use any more counts neither way. */
public final class FileSystemUse {
    /** From how many per cent on a file system is full, unless someone says otherwise. */
    public static final int FULL = 90;

    private final FileSystem disk;

    /**
     * Takes a file system.
     *
     * @param disk one that has its sizes
     */
    public FileSystemUse(FileSystem disk) {
        this.disk = disk;
    }

    /** {@return its size in bytes, without a sign} */
    public BigInteger total() {
        return new Counter(disk.totalBytes).value();
    }

    /** {@return the bytes that are free, those kept for root among them} */
    public BigInteger free() {
        return new Counter(disk.freeBytes).value();
    }

    /** {@return the bytes that are not free} */
    public BigInteger used() {
        return total().subtract(free()).max(BigInteger.ZERO);
    }

    /**
     * {@return the bytes that any user may fill} More than 2^63 are what a negative number looks like, blocks overdrawn
     * from the reserve, and count as none.
     */
    public BigInteger available() {
        return BigInteger.valueOf(Math.max(0, disk.availableBytes));
    }

    /** {@return whether nothing is available} */
    public boolean isExhausted() {
        return available().signum() == 0;
    }

    /** {@return what is used and what is available, together} */
    public BigInteger usable() {
        return used().add(available());
    }

    /** {@return how many per cent of what is usable are used; null when nothing is usable} */
    public Double usedPercent() {
        return usable().signum() == 0 ? null : 100 * used().doubleValue() / usable().doubleValue();
    }

    /**
     * {@return whether at least so many per cent of what is usable are used, or nothing is available}
     *
     * @param percent 0 to 100
     */
    public boolean isFull(int percent) {
        return isExhausted()
            || used().multiply(BigInteger.valueOf(100)).compareTo(usable().multiply(BigInteger.valueOf(percent))) >= 0;
    }
}
