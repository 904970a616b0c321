package com.kelvo.tarn.inventory;

import java.time.Duration;
import java.util.List;

/** What the host's disks are, how full its mounts of zfs and vxfs are, and what disks and ports do now. */
public final class Inventory {
    static {
        InventoryLibrary.load();
    }

    private Inventory() {
    }

    /**
     * The whole disks that can be opened, in the order of their directory, and what each of them is. Disks whose driver
     * tells all but the designator are asked for that alone.
     *
     * @return an unmodifiable list
     * @throws RuntimeException when the host does not tell
     */
    public static List<Identity> identities() {
        return List.of(readIdentities());
    }

    /**
     * The mounts of the kinds zfs and vxfs, with their sizes, each with {@link Mount#LIMIT} to tell them.
     *
     * @return an unmodifiable list, in the mount table's order
     * @throws RuntimeException when the mount table cannot be opened
     */
    public static List<Mount> mounts() {
        return mounts(Mount.LIMIT);
    }

    /**
     * The mounts of the kinds zfs and vxfs, with their sizes. They are asked at once, and one that does not answer
     * costs its own row's sizes; it is not asked again before it has answered.
     *
     * @param limit how long each has to tell its sizes, in milliseconds and at most an hour; with none,
     *     they are listed and not asked
     * @return an unmodifiable list, in the mount table's order
     * @throws IllegalArgumentException when the limit is negative
     * @throws RuntimeException when the mount table cannot be opened
     */
    public static List<Mount> mounts(Duration limit) {
        return List.of(readMounts("", milliseconds(limit)));
    }

    /**
     * The mount of one of these kinds that is mounted there, with its sizes. No other is asked or waited for.
     *
     * @param mountPoint where
     * @param limit how long it has to tell its sizes, as above
     * @return null when there is none
     * @throws IllegalArgumentException when the limit is negative
     * @throws RuntimeException when the mount table cannot be opened
     */
    public static Mount mount(String mountPoint, Duration limit) {
        Mount[] there = mountPoint.isEmpty() ? new Mount[0] : readMounts(mountPoint, milliseconds(limit));
        return there.length == 0 ? null : there[0];
    }

    private static long milliseconds(Duration limit) {
        if (limit.isNegative()) {
            throw new IllegalArgumentException("a negative limit: " + limit);
        }
        Duration most = Duration.ofHours(1);
        return (limit.compareTo(most) < 0 ? limit : most).toMillis();
    }

    /**
     * The kinds of the mounts of which neither {@link #mounts()} tells nor the agent, such as "proc" and "tmpfs": one
     * for each such mount.
     *
     * @return an unmodifiable list, in the mount table's order
     * @throws RuntimeException when the mount table cannot be opened
     */
    public static List<String> otherKinds() {
        return List.of(readOtherKinds());
    }

    /**
     * Opens the kernel statistics for any number of readings.
     *
     * @return a sampler that is to be closed
     * @throws RuntimeException when the kernel statistics cannot be opened
     */
    public static Sampler sampler() {
        return new Sampler();
    }

    private static native Identity[] readIdentities();

    /** Those of a mount point; of the empty one, all. */
    private static native Mount[] readMounts(String mountPoint, long milliseconds);

    private static native String[] readOtherKinds();
}
