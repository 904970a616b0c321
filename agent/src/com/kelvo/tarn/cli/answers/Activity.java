package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.inventory.DiskActivity;
import com.kelvo.tarn.inventory.PortTraffic;
import com.kelvo.tarn.inventory.Sample;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** Makes rates of samples that follow one another. */
public final class Activity {
    /** One disk in an interval. */
    public static final class Disk extends DiskLoad {
        /** Such as "c1t0d0", or null. */
        public final String disk;
        /** What the kernel calls it, such as "sd0". */
        public final String instance;
        /** By kind, how many errors there were; null: they are not counted, or were reset. */
        public final transient Map<String, Long> errors;
        /** Whether it was not there before: what it did is told since the kernel counts. */
        public final transient boolean isNew;

        final transient Increase increase;

        private Disk(DiskActivity before, DiskActivity now, Increase increase) {
            super(List.of(increase));
            this.increase = increase;
            disk = now.disk;
            instance = now.instance;
            isNew = before == null || before.crtime != now.crtime;
            errors = now.errors == null || !isNew && before.errors == null ? null
                : increases(isNew ? null : before.errors, now.errors);
        }

        /**
         * What the disk did since an earlier reading.
         *
         * @param before the earlier reading; null: since the kernel counts
         * @param now the later one
         */
        Disk(DiskActivity before, DiskActivity now) {
            this(before, now, Increase.between(before, now));
        }

        private static Map<String, Long> increases(DiskActivity.Errors before, DiskActivity.Errors now) {
            Map<String, Long> increases = DiskErrors.of(now);
            if (before != null) {
                DiskErrors.of(before).forEach((kind, was) -> increases.merge(kind, -was, Long::sum));
            }
            return increases.values().stream().anyMatch(increase -> increase < 0) ? null : increases;
        }

        /** {@return what people know it as} */
        public String name() {
            return disk == null ? instance : disk;
        }
    }

    /** A logical unit in an interval: all of its disks that are counted, as one. */
    public static final class Unit extends DiskLoad {
        /** One of its disks. */
        public static final class Path {
            /** What it is called. */
            public final String disk;
            /** Of the commands that ended, the share that went this way; null when none did, or counters were reset. */
            public final Double sharePercent;

            private Path(Disk disk, Double sharePercent) {
                this.disk = disk.name();
                this.sharePercent = sharePercent;
            }
        }

        /** The array's node name. */
        public final String node;
        /** The unit's number as the array exports it. */
        public final Number lun;
        /** Its disks, in the order of its paths. */
        public final List<Path> paths = new ArrayList<>();

        private Unit(LogicalUnit unit, List<Disk> disks) {
            super(disks.stream().map(disk -> disk.increase).collect(Collectors.toList()));
            node = unit.node;
            lun = unit.lun.bigIntegerValue();
            double all = disks.stream().mapToDouble(disk -> disk.increase.operations()).sum();
            disks.forEach(disk -> paths.add(
                new Path(disk, reset || all == 0 ? null : Double.valueOf(100 * disk.increase.operations() / all))));
        }

        /** {@return what it is called, such as "50060e8000c3a2b0 LUN 5"} */
        public String place() {
            return node + " LUN " + lun;
        }
    }

    /** What was done between two readings. */
    public static final class Interval {
        /** Whether there was no earlier reading: all is told since it is counted. */
        public final boolean isFirst;
        /** The longest time between this reading of a disk and the one before it; null when there is none such. */
        public final Double seconds;
        /** The kernel's time of the reading, in nanoseconds. */
        public final long snaptime;
        /** In the kernel's order. */
        public final List<Disk> disks;
        /** By adapter and port. */
        public final List<PortLoad> ports;
        /** The disks that were there at the reading before, and now are not. */
        public final List<String> gone;

        private Interval(boolean isFirst, List<Disk> disks, List<PortLoad> ports, List<String> gone, Double seconds,
                         long snaptime) {
            this.isFirst = isFirst;
            this.seconds = seconds;
            this.snaptime = snaptime;
            this.disks = disks;
            this.ports = ports;
            this.gone = gone;
        }

        /** {@return whether the second reading found all as the first one did, its times too} */
        public boolean isNothing() {
            return !isFirst && gone.isEmpty() && ports.stream().allMatch(port -> port.isNothing)
                && disks.stream().allMatch(disk -> !disk.isNew && disk.increase.isNothing());
        }

        /** {@return whether disks or ports came since the reading before, or disks went} */
        public boolean isOther() {
            return !isFirst && (!gone.isEmpty() || disks.stream().anyMatch(disk -> disk.isNew)
                                || ports.stream().anyMatch(port -> port.isNew));
        }

        /**
         * {@return the logical units that have disks which are counted}
         *
         * @param paths all logical units
         */
        public List<Unit> units(Paths paths) {
            Map<String, Disk> byName = new HashMap<>();
            disks.forEach(disk -> byName.putIfAbsent(disk.name(), disk));
            return paths.units.stream().flatMap(unit -> {
                List<Disk> its = unit.paths.stream().map(LogicalUnit.Path::deviceName).distinct()
                    .flatMap(name -> Stream.ofNullable(byName.get(name))).collect(Collectors.toList());
                return its.isEmpty() ? Stream.empty() : Stream.of(new Unit(unit, its));
            }).collect(Collectors.toList());
        }
    }

    /** The last reading of each, also of those that could not be read since. */
    private final Map<String, DiskActivity> disks = new HashMap<>();
    /** Those of the last reading. */
    private Map<String, PortTraffic> ports = Map.of();
    /** The instances of the last reading, with the disks' names. */
    private Map<String, String> there;

    /**
     * {@return what was done since the last sample}
     *
     * @param sample the next one
     * @param payload how many bytes a second the link of a port can carry, by its world-wide name; null when unknown
     */
    public Interval next(Sample sample, Function<String, Long> payload) {
        boolean isFirst = there == null;
        Map<String, String> gone = isFirst ? new LinkedHashMap<>() : there;
        there = new LinkedHashMap<>();
        List<Disk> loads = new ArrayList<>();
        for (DiskActivity now : sample.disks) {
            Disk load = new Disk(disks.put(now.instance, now), now);
            loads.add(load);
            there.put(now.instance, load.name());
        }
        Double seconds = seconds(loads.stream().filter(load -> isFirst || gone.containsKey(load.instance)));
        Map<String, PortTraffic> before = ports;
        ports = new HashMap<>();
        List<PortLoad> traffic = new ArrayList<>();
        for (PortTraffic now : sample.ports) {
            String key = now.adapter + " " + now.port + " " + now.wwn;
            PortTraffic was = before.get(key);
            ports.put(key, now);
            traffic.add(new PortLoad(was, now, seconds == null ? ownSeconds(was, now) : seconds,
                                     payload.apply(now.wwn)));
        }
        gone.keySet().removeAll(there.keySet());
        return new Interval(isFirst, loads, traffic, List.copyOf(gone.values()), seconds,
                            sample.disks.stream().mapToLong(disk -> disk.snaptime).max().orElse(0));
    }

    private static Double seconds(Stream<Disk> loads) {
        double longest = loads.mapToDouble(load -> load.increase.seconds()).max().orElse(0);
        return longest > 0 ? longest : null;
    }

    /** A host without disks has the port's clock alone. */
    private static Double ownSeconds(PortTraffic before, PortTraffic now) {
        return before == null || before.secondsSinceLastReset == null || now.secondsSinceLastReset == null ? null
            : Double.valueOf(now.secondsSinceLastReset - before.secondsSinceLastReset);
    }
}
