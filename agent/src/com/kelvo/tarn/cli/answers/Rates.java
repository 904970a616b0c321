package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.DoubleStream;
import java.util.stream.IntStream;
import java.util.stream.Stream;
import javax.wbem.cim.UnsignedInt;

/**
 * What the counters of a host went up by, per second. A counter that is not kept has no rate, null; nor has any counter
 * of a device of which one went back, since they were all reset in between.
 */
public final class Rates {
    /** A processor's clock counters have 32 bits and go round; no clock ticks faster than this a second. */
    private static final double FASTEST_CLOCK = 1000;
    /** In a longer time the fastest clock may have gone round as a whole. */
    private static final double LONGEST = Duration.ofDays(49).toSeconds();

    /** What was read from a disk and written to it. */
    public static final class Disk {
        /** Such as "c0t0d0", or empty. */
        public final String diskName;
        /** What the kernel calls it, such as "sd0". */
        public final String instanceName;
        /** Whether its counters were reset. */
        public final boolean reset;
        /** Bytes read per second. */
        public final Double bytesReadPerSecond;
        /** Bytes written per second. */
        public final Double bytesWrittenPerSecond;
        /** The share of the time in which a request was under way, in per cent. */
        public final Double busyPercent;

        private Disk(SolarisDiskIOInformation before, SolarisDiskIOInformation after, double seconds) {
            diskName = after.diskName();
            instanceName = after.instanceName();
            Increases increases = new Increases(seconds);
            Double read = increases.perSecond(new Counter(before.bytesRead()), new Counter(after.bytesRead()));
            Double written = increases.perSecond(new Counter(before.bytesWritten()), new Counter(after.bytesWritten()));
            Double busy = increases.perSecond(new Counter(before.runTime()), new Counter(after.runTime()));
            increases.perSecond(new Counter(before.waitLastUpdate()), new Counter(after.waitLastUpdate()));
            reset = increases.reset;
            bytesReadPerSecond = reset ? null : read;
            bytesWrittenPerSecond = reset ? null : written;
            busyPercent = reset || busy == null ? null : busy / 1e7;
        }
    }

    /** What a processor spent its ticks on, in per cent of them. */
    public static final class Processor {
        /** The processor's number. */
        public final int cpuId;
        /** Spent in programs. */
        public final Double userPercent;
        /** Spent in the kernel. */
        public final Double kernelPercent;
        /** Spent waiting for I/O. */
        public final Double waitPercent;
        /** Spent idle. */
        public final Double idlePercent;

        private Processor(SolarisCpuUtilizationData before, SolarisCpuUtilizationData after, double seconds) {
            cpuId = after.cpuId();
            Double[] percent = shares(
                seconds, before.userTicks(), after.userTicks(), before.kernelTicks(), after.kernelTicks(),
                before.waitTicks(), after.waitTicks(), before.idleTicks(), after.idleTicks());
            userPercent = percent[0];
            kernelPercent = percent[1];
            waitPercent = percent[2];
            idlePercent = percent[3];
        }

        /** Of pairs of ticks before and after. */
        private static Double[] shares(double seconds, long... ticks) {
            double[] increases = IntStream.range(0, ticks.length / 2)
                .mapToDouble(i -> Counter.of32(ticks[2 * i + 1]).since(Counter.of32(ticks[2 * i]))).toArray();
            double all = DoubleStream.of(increases).sum();
            boolean unknown = all == 0 || all > FASTEST_CLOCK * seconds || seconds > LONGEST;
            return DoubleStream.of(increases).mapToObj(part -> unknown ? null : 100 * part / all)
                .toArray(Double[]::new);
        }
    }

    /** What went through a port of an adapter. */
    public static final class Port {
        /** As the changes call it. */
        public final String port;
        /** Whether its counters were reset. */
        public final boolean reset;
        /** Frames sent per second. */
        public final Double framesSentPerSecond;
        /** Frames received per second. */
        public final Double framesReceivedPerSecond;
        /** All kinds of errors that the adapter counts. */
        public final Double errorsPerSecond;

        private Port(String port, TrInstance before, TrInstance after, double seconds) {
            this.port = port;
            Increases increases = new Increases(seconds);
            for (TrProperty counter : after.getTrClass().getProperties()) {
                if (after.get(counter) instanceof UnsignedInt) {
                    increases.perSecond(before, after, counter);
                }
            }
            reset = increases.reset;
            framesSentPerSecond =
                reset ? null : increases.perSecond(before, after, FCPortStatisticsProvider.packetsTransmitted);
            framesReceivedPerSecond =
                reset ? null : increases.perSecond(before, after, FCPortStatisticsProvider.packetsReceived);
            errorsPerSecond = reset ? null : Stream.of(PortError.values())
                .map(error -> increases.perSecond(error.in(before), error.in(after)))
                .filter(rate -> rate != null).reduce(Double::sum).orElse(null);
        }
    }

    /** Makes rates of the counters of one device. */
    private static final class Increases {
        private final double seconds;
        private boolean reset;

        private Increases(double seconds) {
            this.seconds = seconds;
        }

        private Double perSecond(Counter before, Counter after) {
            reset |= after.wentBack(before);
            Double increase = after.since(before);
            return increase == null ? null : increase / seconds;
        }

        private Double perSecond(TrInstance before, TrInstance after, TrProperty counter) {
            return perSecond(Counter.of(before, counter), Counter.of(after, counter));
        }
    }

    /** Between the two recordings; null when that is not known, or there are no rates between these two. */
    public final Double seconds;
    /** Why there are no rates at all; null when there are some. */
    public final String reason;
    /** Those that both descriptions count under the same name and instance. */
    public final List<Disk> disks = new ArrayList<>();
    /** Those that both descriptions have. */
    public final List<Processor> processors = new ArrayList<>();
    /** Those that both descriptions have counters of. */
    public final List<Port> ports = new ArrayList<>();

    Rates(Snapshot old, Snapshot now) {
        String incomparable = reason(old, now);
        if (incomparable != null) {
            seconds = null;
            reason = incomparable;
            return;
        }
        double time = Duration.between(old.recordedAt, now.recordedAt).toMillis() / 1e3;
        seconds = time;
        now.io.forEach((device, disk) -> {
            if (old.io.containsKey(device)) {
                disks.add(new Disk(old.io.get(device), disk, time));
            }
        });
        now.cpu.forEach((id, cpu) -> {
            if (old.cpu.containsKey(id)) {
                processors.add(new Processor(old.cpu.get(id), cpu, time));
            }
        });
        now.ports.forEach((port, statistics) -> {
            if (old.ports.containsKey(port)) {
                ports.add(new Port(port, old.ports.get(port), statistics, time));
            }
        });
        reason = disks.isEmpty() && processors.isEmpty() && ports.isEmpty() ? "nothing is counted in both" : null;
    }

    /** Null: there may be rates. */
    private static String reason(Snapshot old, Snapshot now) {
        if (old.recordedAt == null || now.recordedAt == null) {
            return old.recordedAt != null ? "NEW does not say when it was recorded"
                : now.recordedAt != null ? "OLD does not say when it was recorded"
                : "neither says when it was recorded";
        }
        return !old.isSameHost(now) ? "these are two hosts"
            : old.recordedAt.isAfter(now.recordedAt) ? "OLD is the newer of the two"
            : old.recordedAt.equals(now.recordedAt) ? "both were recorded at the same time" : null;
    }
}
