package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.inventory.PortTraffic;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What went through a port in an interval. What is not counted is null, and all is where counters were reset. */
public final class PortLoad {
    private static final int WORD = 4;

    private static final Map<String, Function<PortTraffic, Long>> ERRORS = new LinkedHashMap<>();

    static {
        ERRORS.put("errorFrames", port -> port.errorFrames);
        ERRORS.put("dumpedFrames", port -> port.dumpedFrames);
        ERRORS.put("linkFailures", port -> port.linkFailures);
        ERRORS.put("lossOfSync", port -> port.lossOfSync);
        ERRORS.put("lossOfSignal", port -> port.lossOfSignal);
        ERRORS.put("primitiveSequenceErrors", port -> port.primitiveSequenceErrors);
        ERRORS.put("invalidTxWords", port -> port.invalidTxWords);
        ERRORS.put("invalidCrcs", port -> port.invalidCrcs);
    }

    private static final List<Function<PortTraffic, Long>> COUNTERS = Stream.concat(
        ERRORS.values().stream(), Stream.<Function<PortTraffic, Long>>of(
            port -> port.secondsSinceLastReset, port -> port.txFrames, port -> port.txWords, port -> port.rxFrames,
            port -> port.rxWords, port -> port.lip, port -> port.nos)).collect(Collectors.toList());

    /** The adapter's index. */
    public final int adapter;
    /** The port's index on its adapter. */
    public final int port;
    /** The port's world-wide name. */
    public final String wwn;
    /** Frames sent, per second. */
    public final Double framesSentPerSecond;
    /** Frames received, per second. */
    public final Double framesReceivedPerSecond;
    /** Bytes sent, per second. */
    public final Double bytesSentPerSecond;
    /** Bytes received, per second. */
    public final Double bytesReceivedPerSecond;
    /** What was sent as a share of what the link can carry; null where its speed is not known. */
    public final Double sentPercent;
    /** What was received as a share of what the link can carry; null where its speed is not known. */
    public final Double receivedPercent;
    /** By kind, how many errors there were in the interval. */
    public final Map<String, Long> errors = new LinkedHashMap<>();
    /** Whether counters were reset. */
    public final boolean reset;

    /** Whether it was not there before. */
    final transient boolean isNew;
    /** Whether nothing was there to tell the port from how it was. */
    final transient boolean isNothing;

    /**
     * What the port did since an earlier reading.
     *
     * @param before the earlier reading; null: since the counters began
     * @param now the later one
     * @param interval the seconds between the two; null when they are not known
     * @param payload the bytes a second that the link can carry in each direction; null when that is not known
     */
    PortLoad(PortTraffic before, PortTraffic now, Double interval, Long payload) {
        adapter = now.adapter;
        port = now.port;
        wwn = now.wwn;
        isNew = before == null;
        reset = !isNew && COUNTERS.stream().anyMatch(counter -> wentBack(counter, before, now));
        isNothing = !isNew
            && COUNTERS.stream().allMatch(counter -> Objects.equals(counter.apply(before), counter.apply(now)));
        Double seconds = isNew ? number(now.secondsSinceLastReset) : interval;
        framesSentPerSecond = perSecond(increase(traffic -> traffic.txFrames, before, now), seconds);
        framesReceivedPerSecond = perSecond(increase(traffic -> traffic.rxFrames, before, now), seconds);
        bytesSentPerSecond = bytes(perSecond(increase(traffic -> traffic.txWords, before, now), seconds));
        bytesReceivedPerSecond = bytes(perSecond(increase(traffic -> traffic.rxWords, before, now), seconds));
        sentPercent = share(bytesSentPerSecond, payload);
        receivedPercent = share(bytesReceivedPerSecond, payload);
        ERRORS.forEach((kind, counter) -> errors.put(kind, increase(counter, before, now)));
    }

    private Long increase(Function<PortTraffic, Long> counter, PortTraffic before, PortTraffic now) {
        Long was = before == null ? Long.valueOf(0) : counter.apply(before);
        Long is = counter.apply(now);
        return reset || was == null || is == null ? null : Long.valueOf(is - was);
    }

    private static boolean wentBack(Function<PortTraffic, Long> counter, PortTraffic before, PortTraffic now) {
        Long was = counter.apply(before);
        Long is = counter.apply(now);
        return was != null && is != null && is < was;
    }

    private static Double perSecond(Long increase, Double seconds) {
        return increase == null || seconds == null || seconds <= 0 ? null : Double.valueOf(increase / seconds);
    }

    private static Double bytes(Double words) {
        return words == null ? null : Double.valueOf(WORD * words);
    }

    private static Double share(Double rate, Long whole) {
        return rate == null || whole == null ? null : Double.valueOf(100 * rate / whole);
    }

    private static Double number(Long counter) {
        return counter == null ? null : Double.valueOf(counter);
    }

    /** {@return the kinds of errors, in the order in which they are told} */
    public static List<String> errorKinds() {
        return List.copyOf(ERRORS.keySet());
    }
}
