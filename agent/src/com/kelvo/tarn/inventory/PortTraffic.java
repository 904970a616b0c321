package com.kelvo.tarn.inventory;

/** The counters of one local Fibre Channel port. One that its driver does not keep is null. */
public final class PortTraffic {
    /** The adapter's index. */
    public final int adapter;
    /** The port's index on its adapter. */
    public final int port;
    /** The port's world-wide name, 16 lower-case hexadecimal digits. */
    public final String wwn;
    /** Seconds since the counters began anew. */
    public final Long secondsSinceLastReset;
    /** Frames sent. */
    public final Long txFrames;
    /** Words sent, of four bytes. */
    public final Long txWords;
    /** Frames received. */
    public final Long rxFrames;
    /** Words received, of four bytes. */
    public final Long rxWords;
    /** Loop initialisations. */
    public final Long lip;
    /** Not-operational sequences. */
    public final Long nos;
    /** Frames with an error. */
    public final Long errorFrames;
    /** Frames dropped for want of buffers. */
    public final Long dumpedFrames;
    /** Link failures. */
    public final Long linkFailures;
    /** Losses of synchronisation. */
    public final Long lossOfSync;
    /** Losses of signal. */
    public final Long lossOfSignal;
    /** Primitive sequence protocol errors. */
    public final Long primitiveSequenceErrors;
    /** Invalid transmission words. */
    public final Long invalidTxWords;
    /** Frames whose checksum was wrong. */
    public final Long invalidCrcs;

    /** Counters in the order of the fields; a negative one is not kept. */
    PortTraffic(int adapter, int port, String wwn, long[] counters) {
        this.adapter = adapter;
        this.port = port;
        this.wwn = wwn;
        this.secondsSinceLastReset = kept(counters[0]);
        this.txFrames = kept(counters[1]);
        this.txWords = kept(counters[2]);
        this.rxFrames = kept(counters[3]);
        this.rxWords = kept(counters[4]);
        this.lip = kept(counters[5]);
        this.nos = kept(counters[6]);
        this.errorFrames = kept(counters[7]);
        this.dumpedFrames = kept(counters[8]);
        this.linkFailures = kept(counters[9]);
        this.lossOfSync = kept(counters[10]);
        this.lossOfSignal = kept(counters[11]);
        this.primitiveSequenceErrors = kept(counters[12]);
        this.invalidTxWords = kept(counters[13]);
        this.invalidCrcs = kept(counters[14]);
    }

    private static Long kept(long counter) {
        return counter < 0 ? null : counter;
    }
}
