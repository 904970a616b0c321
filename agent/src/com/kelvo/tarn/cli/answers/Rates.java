package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.FCPortStatisticsProvider;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.LongStream;

/**
 * What the counters of a host went up by, per second. A counter that is not kept, or that stands lower than before
 * since the host was started in between, has no rate: null.
 */
public final class Rates {
    private static final List<TrProperty> errorCounters = List.of(
        FCPortStatisticsProvider.errorFrames, FCPortStatisticsProvider.dumpedFrames,
        FCPortStatisticsProvider.linkFailures, FCPortStatisticsProvider.lossOfSyncCounter,
        FCPortStatisticsProvider.lossOfSignalCounter, FCPortStatisticsProvider.primitiveSeqProtocolErrCount,
        FCPortStatisticsProvider.invalidTransmissionWords, FCPortStatisticsProvider.crcErrors);

    /** A processor's clock counters have 32 bits and go round; no clock ticks faster than this a second. */
    private static final double fastestClock = 1000;

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
                    cpu.userTicks() - before.userTicks(), cpu.kernelTicks() - before.kernelTicks(),
                    cpu.waitTicks() - before.waitTicks(), cpu.idleTicks() - before.idleTicks())));
            }
        });
        now.ports.forEach((port, statistics) -> {
            if (old.ports.containsKey(port)) {
                TrInstance before = old.ports.get(port);
                ports.add(new Port(port, rate(before, statistics, FCPortStatisticsProvider.packetsTransmitted),
                                   rate(before, statistics, FCPortStatisticsProvider.packetsReceived),
                                   errorCounters.stream().map(counter -> rate(before, statistics, counter))
                                       .filter(rate -> rate != null).reduce(Double::sum).orElse(null)));
            }
        });
    }

    private Double rate(TrInstance before, TrInstance after, TrProperty counter) {
        return rate(Instances.number(before, counter).longValue(), Instances.number(after, counter).longValue());
    }

    private Double rate(long before, long after) {
        return before == -1 || after == -1 || Long.compareUnsigned(after, before) < 0 ? null
            : (after - before) / seconds;
    }

    private Double[] shares(long... increases) {
        long[] ticks = LongStream.of(increases).map(increase -> increase & 0xffffffffL).toArray();
        double all = LongStream.of(ticks).sum();
        return LongStream.of(ticks).mapToObj(part -> all == 0 || all > fastestClock * seconds ? null : 100 * part / all)
            .toArray(Double[]::new);
    }
}
