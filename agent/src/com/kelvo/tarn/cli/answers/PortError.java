package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.EnumMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;

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

    private static final List<TrProperty> COUNTERS = Stream.concat(
        Stream.of(values()).map(error -> error.property),
        Stream.of(FCPortStatisticsProvider.packetsTransmitted, FCPortStatisticsProvider.packetsReceived,
                  FCPortStatisticsProvider.lipCount, FCPortStatisticsProvider.nosCount)).collect(Collectors.toList());

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

    /**
     * {@return what went up since an earlier time, and by how much; nothing when a counter of the port went back since,
     * as after a reset, or the port is not known then and now}
     *
     * @param before the same host then
     * @param port one that it has now, by its world-wide name
     */
    public static Map<PortError, Double> risen(Fabric before, Fabric.Port port) {
        Map<PortError, Double> risen = new EnumMap<>(PortError.class);
        String wwn = Instances.name(port.instance, HbaPortProvider.permanentAddress);
        TrInstance then = wwn.isEmpty() ? null : before.ports().stream()
            .filter(each -> wwn.equals(Instances.name(each.instance, HbaPortProvider.permanentAddress)))
            .findFirst().map(each -> each.statistics).orElse(null);
        if (then == null || port.statistics == null || COUNTERS.stream().anyMatch(
                counter -> wentBack(Counter.of(then, counter), Counter.of(port.statistics, counter)))) {
            return risen;
        }
        for (PortError error : values()) {
            Double more = error.in(port.statistics).since(error.in(then));
            if (more != null && more > 0) {
                risen.put(error, more);
            }
        }
        return risen;
    }

    private static boolean wentBack(Counter then, Counter now) {
        return then.isKept() && now.isKept() && now.since(then) == null;
    }
}
