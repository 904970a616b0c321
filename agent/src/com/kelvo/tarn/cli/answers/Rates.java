package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.DoubleStream;
import java.util.stream.IntStream;
import java.util.stream.Stream;

/**
 * What the counters of a host went up by, per second. A counter that is not kept, or that stands lower than before
 * since the host was started in between, has no rate: null.
 */
public final class Rates {
    /** A processor's clock counters have 32 bits and go round; no clock ticks faster than this a second. */
    private static final double FASTEST_CLOCK = 1000;

    /** What was read from a disk and written to it. */
    public static final class Disk {
        /** Such as "c0t0d0", or empty. */
        public final String diskName;
        /** What the kernel calls it, such as "sd0". */
        public final String instanceName;
        /** Bytes read per second. */
        public final Double bytesReadPerSecond;
        /** Bytes written per second. */
        public final Double bytesWrittenPerSecond;
        /** The share of the time in which a request was under way, in per cent. */
        public final Double busyPercent;

        private Disk(String diskName, String instanceName, Double read, Double written, Double busyPercent) {
            this.diskName = diskName;
            this.instanceName = instanceName;
            bytesReadPerSecond = read;
            bytesWrittenPerSecond = written;
            this.busyPercent = busyPercent;
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

        private Processor(int cpuId, Double... percent) {
            this.cpuId = cpuId;
            userPercent = percent[0];
            kernelPercent = percent[1];
            waitPercent = percent[2];
            idlePercent = percent[3];
        }
    }

    /** What went through a port of an adapter. */
    public static final class Port {
        /** As the changes call it. */
        public final String port;
        /** Frames sent per second. */
        public final Double framesSentPerSecond;
        /** Frames received per second. */
        public final Double framesReceivedPerSecond;
        /** All kinds of errors that the adapter counts. */
        public final Double errorsPerSecond;

        private Port(String port, Double sent, Double received, Double errors) {
            this.port = port;
            framesSentPerSecond = sent;
            framesReceivedPerSecond = received;
            errorsPerSecond = errors;
        }
    }

    /** Between the two recordings. */
    public final double seconds;
    /** Those that both descriptions count. */
    public final List<Disk> disks = new ArrayList<>();
    /** Those that both descriptions have. */
    public final List<Processor> processors = new ArrayList<>();
    /** Those that both descriptions have counters of. */
    public final List<Port> ports = new ArrayList<>();

    /** Null: one of the two does not say when it was recorded, or the new one is not the later. */
    static Rates between(Snapshot old, Snapshot now) {
        return old.recordedAt == null || now.recordedAt == null || !now.recordedAt.isAfter(old.recordedAt) ? null
            : new Rates(old, now, Duration.between(old.recordedAt, now.recordedAt).toMillis() / 1e3);
    }

    private Rates(Snapshot old, Snapshot now, double seconds) {
        this.seconds = seconds;
        now.io.forEach((instance, disk) -> {
            if (old.io.containsKey(instance)) {
                var before = old.io.get(instance);
                Double busy = rate(before.runTime(), disk.runTime());
                disks.add(new Disk(disk.diskName(), instance, rate(before.bytesRead(), disk.bytesRead()),
                                   rate(before.bytesWritten(), disk.bytesWritten()), busy == null ? null : busy / 1e7));
            }
        });
        now.cpu.forEach((id, cpu) -> {
            if (old.cpu.containsKey(id)) {
                var before = old.cpu.get(id);
                processors.add(new Processor(cpu.cpuId(), shares(
                    before.userTicks(), cpu.userTicks(), before.kernelTicks(), cpu.kernelTicks(),
                    before.waitTicks(), cpu.waitTicks(), before.idleTicks(), cpu.idleTicks())));
            }
        });
        now.ports.forEach((port, statistics) -> {
            if (old.ports.containsKey(port)) {
                TrInstance before = old.ports.get(port);
                ports.add(new Port(port, rate(before, statistics, FCPortStatisticsProvider.packetsTransmitted),
                                   rate(before, statistics, FCPortStatisticsProvider.packetsReceived),
                                   Stream.of(PortError.values())
                                       .map(error -> rate(error.in(before), error.in(statistics)))
                                       .filter(rate -> rate != null).reduce(Double::sum).orElse(null)));
            }
        });
    }

    private Double rate(Counter before, Counter after) {
        Double increase = after.since(before);
        return increase == null ? null : increase / seconds;
    }

    private Double rate(TrInstance before, TrInstance after, TrProperty counter) {
        return rate(Counter.of(before, counter), Counter.of(after, counter));
    }

    private Double rate(long before, long after) {
        return rate(new Counter(before), new Counter(after));
    }

    /** Pairs of a processor's ticks before and after. */
    private Double[] shares(long... ticks) {
        double[] increases = IntStream.range(0, ticks.length / 2)
            .mapToDouble(i -> Counter.of32(ticks[2 * i + 1]).since(Counter.of32(ticks[2 * i]))).toArray();
        double all = DoubleStream.of(increases).sum();
        return DoubleStream.of(increases)
            .mapToObj(part -> all == 0 || all > FASTEST_CLOCK * seconds ? null : 100 * part / all)
            .toArray(Double[]::new);
    }
}
