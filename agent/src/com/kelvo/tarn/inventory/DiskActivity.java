package com.kelvo.tarn.inventory;

/** The kernel's counters of one disk. Times are in nanoseconds, sizes in bytes; all counters only grow. */
public final class DiskActivity {
    /** The driver's instance: "sd0". */
    public final String instance;
    /** The disk's name, such as "c1t0d0"; null when no device of the directory is that instance. */
    public final String disk;
    /** When the record was made. */
    public final long crtime;
    /** When this reading was made, on the clock of {@link #crtime}. */
    public final long snaptime;
    /** Reads that ended, modulo 2^32. */
    public final long reads;
    /** Writes that ended, modulo 2^32. */
    public final long writes;
    /** What was read; unsigned. */
    public final long nread;
    /** What was written; unsigned. */
    public final long nwritten;
    /** How long commands were waiting. */
    public final long wtime;
    /** The sum, over time, of commands waiting. */
    public final long wlentime;
    /** When the waiting commands last changed in number. */
    public final long wlastupdate;
    /** How long commands were being served. */
    public final long rtime;
    /** The sum, over time, of commands being served. */
    public final long rlentime;
    /** When the commands being served last changed in number. */
    public final long rlastupdate;
    /** Commands waiting now. */
    public final long wcnt;
    /** Commands being served now. */
    public final long rcnt;
    /** What the driver counts of errors; null when it does not, or cannot be asked. */
    public final Errors errors;

    DiskActivity(String instance, String disk, long crtime, long snaptime, long reads, long writes, long nread,
            long nwritten, long wtime, long wlentime, long wlastupdate, long rtime, long rlentime, long rlastupdate,
            long wcnt, long rcnt, Errors errors) {
        this.instance = instance;
        this.disk = disk;
        this.crtime = crtime;
        this.snaptime = snaptime;
        this.reads = reads;
        this.writes = writes;
        this.nread = nread;
        this.nwritten = nwritten;
        this.wtime = wtime;
        this.wlentime = wlentime;
        this.wlastupdate = wlastupdate;
        this.rtime = rtime;
        this.rlentime = rlentime;
        this.rlastupdate = rlastupdate;
        this.wcnt = wcnt;
        this.rcnt = rcnt;
        this.errors = errors;
    }

    /** The driver's counts of a disk's errors; each modulo 2^32, and 0 where the driver has no such count. */
    public static final class Errors {
        /** "Soft Errors". */
        public final long soft;
        /** "Hard Errors". */
        public final long hard;
        /** "Transport Errors". */
        public final long transport;
        /** "Media Error". */
        public final long media;
        /** "Device Not Ready". */
        public final long notReady;
        /** "No Device". */
        public final long noDevice;
        /** "Recoverable". */
        public final long recoverable;
        /** "Illegal Request". */
        public final long illegalRequest;
        /** "Predictive Failure Analysis". */
        public final long predictiveFailure;

        Errors(long soft, long hard, long transport, long media, long notReady, long noDevice, long recoverable,
                long illegalRequest, long predictiveFailure) {
            this.soft = soft;
            this.hard = hard;
            this.transport = transport;
            this.media = media;
            this.notReady = notReady;
            this.noDevice = noDevice;
            this.recoverable = recoverable;
            this.illegalRequest = illegalRequest;
            this.predictiveFailure = predictiveFailure;
        }
    }
}
