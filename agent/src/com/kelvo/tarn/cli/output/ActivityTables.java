package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.cli.answers.Activity;
import com.kelvo.tarn.cli.answers.DiskErrors;
import com.kelvo.tarn.cli.answers.DiskLoad;
import com.kelvo.tarn.cli.answers.PortLoad;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;

/** What disks, logical units and ports do, as tables. */
public final class ActivityTables {
    private static final double KIB = 1024;
    private static final double MB = 1e6;

    /** What stands over the column of each kind of error, of disks and of ports. */
    private static final Map<String, String> HEADINGS = Map.ofEntries(
        Map.entry("soft", "s/w"), Map.entry("hard", "h/w"), Map.entry("transport", "trn"), Map.entry("media", "med"),
        Map.entry("notReady", "nrdy"), Map.entry("noDevice", "nodev"), Map.entry("recoverable", "rec"),
        Map.entry("illegalRequest", "ill"), Map.entry("predictiveFailure", "pfa"), Map.entry("errorFrames", "frame"),
        Map.entry("dumpedFrames", "dump"), Map.entry("linkFailures", "link"), Map.entry("lossOfSync", "sync"),
        Map.entry("lossOfSignal", "sig"), Map.entry("primitiveSequenceErrors", "prim"),
        Map.entry("invalidTxWords", "word"), Map.entry("invalidCrcs", "crc"));

    /** What each kind of a disk's errors is called where it has no column. */
    private static final Map<String, String> WORDS = Map.of(
        "soft", "soft errors", "hard", "hard errors", "transport", "transport errors", "media", "media errors",
        "notReady", "not ready", "noDevice", "no device", "recoverable", "recoverable errors",
        "illegalRequest", "illegal requests", "predictiveFailure", "predicted failures");

    private final double slow;
    private final boolean hasErrors;

    /**
     * Tables of a kind.
     *
     * @param slow from how many milliseconds on service is marked as slow
     * @param hasErrors whether the disks' errors are columns
     */
    public ActivityTables(double slow, boolean hasErrors) {
        this.slow = slow;
        this.hasErrors = hasErrors;
    }

    /**
     * {@return the columns for disks}
     *
     * @param isFirst whether all is told since boot, when errors are nothing new
     */
    public RateTable<Activity.Disk> disks(boolean isFirst) {
        RateTable<Activity.Disk> table = loads(new RateTable<>("device", Activity.Disk::name));
        if (hasErrors) {
            errors(table, DiskErrors.kinds(), disk -> disk.errors, isFirst);
        }
        return table;
    }

    /** {@return the columns for logical units} */
    public RateTable<Activity.Unit> units() {
        return loads(new RateTable<>("unit", Activity.Unit::place));
    }

    /**
     * {@return the columns for ports}
     *
     * @param isFirst whether all is told since boot, when errors are nothing new
     */
    public RateTable<PortLoad> ports(boolean isFirst) {
        return errors(new RateTable<PortLoad>("port", port -> port.wwn)
            .figure("txf/s", 1, port -> port.framesSentPerSecond)
            .figure("rxf/s", 1, port -> port.framesReceivedPerSecond)
            .figure("txMB/s", 2, port -> scaled(port.bytesSentPerSecond, MB))
            .figure("rxMB/s", 2, port -> scaled(port.bytesReceivedPerSecond, MB))
            .figure("tx%", 1, port -> port.sentPercent).figure("rx%", 1, port -> port.receivedPercent),
                      PortLoad.errorKinds(), port -> port.errors, isFirst);
    }

    private <R extends DiskLoad> RateTable<R> loads(RateTable<R> table) {
        return table.figure("r/s", 1, load -> load.readsPerSecond).figure("w/s", 1, load -> load.writesPerSecond)
            .figure("kr/s", 1, load -> scaled(load.bytesReadPerSecond, KIB))
            .figure("kw/s", 1, load -> scaled(load.bytesWrittenPerSecond, KIB))
            .figure("wait", 1, load -> load.waiting).figure("actv", 1, load -> load.active)
            .figure("wsvc_t", 1, load -> load.waitMilliseconds)
            .figure("asvc_t", 1, load -> load.serviceMilliseconds,
                    load -> load.serviceMilliseconds != null && load.serviceMilliseconds > slow)
            .figure("%w", 0, load -> load.waitPercent).figure("%b", 0, load -> load.busyPercent);
    }

    private static <R> RateTable<R> errors(RateTable<R> table, List<String> kinds,
                                           Function<R, Map<String, Long>> errors, boolean isFirst) {
        for (String kind : kinds) {
            Function<R, Long> count = row -> errors.apply(row) == null ? null : errors.apply(row).get(kind);
            table.figure(HEADINGS.get(kind), 0, count,
                         row -> !isFirst && Objects.requireNonNullElse(count.apply(row), 0L) > 0);
        }
        return table;
    }

    /**
     * {@return what else there is to say of a disk; empty when nothing}
     *
     * @param disk one of an interval
     * @param isFirst whether all is told since boot
     */
    public String remark(Activity.Disk disk, boolean isFirst) {
        return disk.reset ? "counters reset" : isFirst ? "" : disk.isNew ? "new, since it came"
            : hasErrors || disk.errors == null ? ""
            : disk.errors.entrySet().stream().filter(error -> error.getValue() > 0)
                .map(error -> Page.TROUBLE + WORDS.get(error.getKey()) + " +" + error.getValue())
                .collect(Collectors.joining(", "));
    }

    /**
     * {@return the ways to a unit, with what of its commands went each way}
     *
     * @param unit one of an interval
     */
    public static String remark(Activity.Unit unit) {
        return unit.reset ? "counters reset" : unit.paths.stream()
            .map(path -> path.disk
                + (path.sharePercent == null ? "" : " " + Units.decimal(path.sharePercent, 0) + "%"))
            .collect(Collectors.joining(", "));
    }

    private static Double scaled(Double number, double unit) {
        return number == null ? null : Double.valueOf(number / unit);
    }
}
