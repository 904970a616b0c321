package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.inventory.DiskActivity;
import java.util.List;
import java.util.function.ToDoubleFunction;

/**
 * What was asked of a disk, or of several as one, in an interval. Rates are null where the interval is not known, times
 * where nothing ended in it, and all of them where counters were reset.
 */
public class DiskLoad {
    /** What the counters of one disk went up by. */
    static final class Increase {
        private static final long LOW_32 = 0xffffffffL;

        private final boolean isReset;
        private final double seconds;
        private final double reads;
        private final double writes;
        private final double bytesRead;
        private final double bytesWritten;
        private final double waitTime;
        private final double waitLength;
        private final double serviceTime;
        private final double serviceLength;

        private Increase(DiskActivity now) {
            isReset = false;
            seconds = (now.snaptime - now.crtime) / 1e9;
            reads = now.reads;
            writes = now.writes;
            bytesRead = unsigned(now.nread);
            bytesWritten = unsigned(now.nwritten);
            waitTime = unsigned(now.wtime);
            waitLength = unsigned(now.wlentime);
            serviceTime = unsigned(now.rtime);
            serviceLength = unsigned(now.rlentime);
        }

        private Increase(DiskActivity before, DiskActivity now) {
            isReset = wentBack(before.nread, now.nread) || wentBack(before.nwritten, now.nwritten)
                || wentBack(before.wtime, now.wtime) || wentBack(before.wlentime, now.wlentime)
                || wentBack(before.rtime, now.rtime) || wentBack(before.rlentime, now.rlentime);
            seconds = (now.snaptime - before.snaptime) / 1e9;
            reads = now.reads - before.reads & LOW_32;
            writes = now.writes - before.writes & LOW_32;
            bytesRead = unsigned(now.nread - before.nread);
            bytesWritten = unsigned(now.nwritten - before.nwritten);
            waitTime = unsigned(now.wtime - before.wtime);
            waitLength = unsigned(now.wlentime - before.wlentime);
            serviceTime = unsigned(now.rtime - before.rtime);
            serviceLength = unsigned(now.rlentime - before.rlentime);
        }

        /** Since the earlier reading; without one, and for a disk that came anew, since the kernel counts. */
        static Increase between(DiskActivity before, DiskActivity now) {
            return before == null || before.crtime != now.crtime ? new Increase(now) : new Increase(before, now);
        }

        private static boolean wentBack(long before, long now) {
            return Long.compareUnsigned(now, before) < 0;
        }

        private static double unsigned(long counter) {
            return counter >= 0 ? counter : (counter >>> 1) * 2.0;
        }

        double seconds() {
            return seconds;
        }

        double operations() {
            return reads + writes;
        }

        boolean isNothing() {
            return !isReset && seconds == 0 && operations() == 0 && bytesRead == 0 && bytesWritten == 0 && waitTime == 0
                && waitLength == 0 && serviceTime == 0 && serviceLength == 0;
        }
    }

    /** Reads that ended, per second. */
    public final Double readsPerSecond;
    /** Writes that ended, per second. */
    public final Double writesPerSecond;
    /** Bytes read, per second. */
    public final Double bytesReadPerSecond;
    /** Bytes written, per second. */
    public final Double bytesWrittenPerSecond;
    /** How many commands were waiting, on average. */
    public final Double waiting;
    /** How many commands were being served, on average. */
    public final Double active;
    /** How long a command was waiting, on average. */
    public final Double waitMilliseconds;
    /** How long a command was being served, on average. */
    public final Double serviceMilliseconds;
    /** The share of the time in which commands were waiting; of several disks the largest. */
    public final Double waitPercent;
    /** The share of the time in which commands were being served; of several disks the largest. */
    public final Double busyPercent;
    /** Whether counters were reset. */
    public final boolean reset;

    /** What several disks did, as one. */
    DiskLoad(List<Increase> disks) {
        reset = disks.stream().anyMatch(disk -> disk.isReset);
        boolean isKnown = !reset && disks.stream().allMatch(disk -> disk.seconds > 0);
        readsPerSecond = sum(isKnown, disks, disk -> disk.reads / disk.seconds);
        writesPerSecond = sum(isKnown, disks, disk -> disk.writes / disk.seconds);
        bytesReadPerSecond = sum(isKnown, disks, disk -> disk.bytesRead / disk.seconds);
        bytesWrittenPerSecond = sum(isKnown, disks, disk -> disk.bytesWritten / disk.seconds);
        waiting = sum(isKnown, disks, disk -> disk.waitLength / 1e9 / disk.seconds);
        active = sum(isKnown, disks, disk -> disk.serviceLength / 1e9 / disk.seconds);
        double operations = sum(true, disks, Increase::operations);
        boolean isCounted = !reset && operations > 0;
        waitMilliseconds = sum(isCounted, disks, disk -> disk.waitLength / 1e6 / operations);
        serviceMilliseconds = sum(isCounted, disks, disk -> disk.serviceLength / 1e6 / operations);
        waitPercent = largest(isKnown, disks, disk -> 100 * (disk.waitTime / 1e9 / disk.seconds));
        busyPercent = largest(isKnown, disks, disk -> 100 * (disk.serviceTime / 1e9 / disk.seconds));
    }

    private static Double sum(boolean isKnown, List<Increase> disks, ToDoubleFunction<Increase> figure) {
        return isKnown ? disks.stream().mapToDouble(figure).sum() : null;
    }

    private static Double largest(boolean isKnown, List<Increase> disks, ToDoubleFunction<Increase> figure) {
        return isKnown ? disks.stream().mapToDouble(figure).max().orElse(0) : null;
    }
}
