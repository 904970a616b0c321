package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;

/** What may go wrong at a port, and is counted. */
public enum PortError {
    /** The link failed. */
    LINK_FAILURE(FCPortStatisticsProvider.linkFailures),
    /** Synchronisation was lost. */
    LOSS_OF_SYNC(FCPortStatisticsProvider.lossOfSyncCounter),
    /** The signal was lost. */
    LOSS_OF_SIGNAL(FCPortStatisticsProvider.lossOfSignalCounter),
    /** An error in a primitive sequence. */
    PRIMITIVE_SEQUENCE_PROTOCOL(FCPortStatisticsProvider.primitiveSeqProtocolErrCount),
    /** An invalid transmission word was received. */
    INVALID_TRANSMISSION_WORD(FCPortStatisticsProvider.invalidTransmissionWords),
    /** A frame was received with a wrong checksum. */
    CRC(FCPortStatisticsProvider.crcErrors),
    /** A frame was received with an error. */
    ERROR_FRAME(FCPortStatisticsProvider.errorFrames),
    /** A frame was dropped for want of room. */
    DUMPED_FRAME(FCPortStatisticsProvider.dumpedFrames);

    private final TrProperty property;

    PortError(TrProperty property) {
        this.property = property;
    }

    /**
     * {@return how often it happened}
     *
     * @param statistics a port's
     */
    public Counter in(TrInstance statistics) {
        return Counter.of(statistics, property);
    }
}
