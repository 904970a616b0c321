package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.san.NetworkHost.Way;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What is lost when things fail, all at once. */
public final class Impact {
    /** A unit of a host. */
    public static final class Loss {
        /** The host's name. */
        public final String host;
        /** The unit's identity. */
        public String unit;
        /** What the host calls it. */
        public final TreeSet<String> disks = new TreeSet<>();
        /** Where it has mounted file systems on it. */
        public final List<String> mounts;

        private final transient long number;
        /** The ends of its paths that are online now, and of those that still are then. */
        private final transient Set<String> before = new HashSet<>();
        private final transient Set<String> after = new HashSet<>();

        private Loss(NetworkHost host, long number) {
            this.host = host.name;
            this.number = number;
            mounts = host.mounts.getOrDefault(number, List.of());
        }

        private void add(Way way, boolean isGone) {
            if (way.disk != null) {
                disks.add(way.disk);
            }
            if (way.isOnline) {
                before.add(way.ends());
                if (!isGone) {
                    after.add(way.ends());
                }
            }
        }
    }

    /** What fails, as the user called it. */
    public final List<String> thing;
    /** What is reached by a path now and by none then; by host, then by unit. */
    public final List<Loss> lost = new ArrayList<>();
    /** What is reached by several paths now and by one then. */
    public final List<Loss> lastPath = new ArrayList<>();

    /**
     * Asks for all paths to the units that have to do with the things.
     *
     * @param store the store
     * @param failing the things
     */
    public Impact(Store store, List<Thing> failing) {
        thing = failing.stream().map(each -> each.name).collect(Collectors.toList());
        NetworkHost.each(store, failing.stream().flatMap(each -> each.snapshots.stream()).collect(
            Collectors.toCollection(TreeSet::new)), host -> add(host, failing));
        Map<Long, String> identities = UnitNames.identities(
            store, Stream.of(lost, lastPath).flatMap(List::stream).map(each -> each.number).collect(
                Collectors.toSet()));
        for (List<Loss> losses : List.of(lost, lastPath)) {
            losses.forEach(each -> each.unit = identities.get(each.number));
            losses.sort(Comparator.<Loss, String>comparing(each -> each.host).thenComparing(each -> each.unit));
        }
    }

    private void add(NetworkHost host, List<Thing> failing) {
        Map<Long, Loss> units = new HashMap<>();
        for (Way way : host.ways) {
            units.computeIfAbsent(way.unit, number -> new Loss(host, number))
                .add(way, failing.stream().anyMatch(each -> each.has(way)));
        }
        for (Loss unit : units.values()) {
            if (unit.after.isEmpty() && !unit.before.isEmpty()) {
                lost.add(unit);
            } else if (unit.after.size() == 1 && unit.before.size() > 1) {
                lastPath.add(unit);
            }
        }
    }
}
