package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.san.NetworkHost.Way;
import java.util.Collection;
import java.util.Comparator;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.Collectors;

/** What is lost when any one thing of a kind fails, the worst first. */
public final class Ranking {
    private static final Comparator<Effect> WORST_FIRST = Comparator.<Effect>comparingLong(each -> -each.lostUnits)
        .thenComparingLong(each -> -each.lostMounts).thenComparingLong(each -> -each.lastPaths)
        .thenComparing(each -> each.thing);

    /** What one of them does; a unit counts once for each host. */
    public static final class Effect {
        /** What it is called. */
        public final String thing;
        /** How many hosts are concerned. */
        public int hosts;
        /** How many units lose their last path. */
        public long lostUnits;
        /** How many mount points are on these. */
        public long lostMounts;
        /** How many units are left with one path that had more. */
        public long lastPaths;
        /** The first host that is concerned; null when none is. */
        public transient String firstHost;

        private transient String latestHost;

        private Effect(String thing) {
            this.thing = thing;
        }

        /** On a unit which is reached by so many paths now, and by so many less then. */
        private void add(NetworkHost host, long unit, int paths, int gone) {
            boolean isLost = paths == gone;
            if (!isLost && paths - gone > 1) {
                return;
            }
            if (isLost) {
                lostUnits++;
                lostMounts += host.mounts.getOrDefault(unit, List.of()).size();
            } else {
                lastPaths++;
            }
            if (!host.name.equals(latestHost)) {
                latestHost = host.name;
                hosts++;
                firstHost = firstHost == null ? host.name : firstHost;
            }
        }
    }

    /** Those that anything hangs on, the worst first. */
    public final List<Effect> effects;
    /** How many others there are. */
    public final int harmless;

    private final PointKind kind;
    private final Map<String, Effect> things = new HashMap<>();

    /**
     * Asks for all paths of the network.
     *
     * @param store the store
     * @param kind what fails
     */
    public Ranking(Store store, PointKind kind) {
        this.kind = kind;
        NetworkHost.each(store, store.query("SELECT snapshot_id FROM latest_snapshot ORDER BY snapshot_id",
                                            row -> row.getLong(1)), this::add);
        effects = things.values().stream().filter(each -> each.hosts > 0).sorted(WORST_FIRST)
            .collect(Collectors.toList());
        harmless = things.size() - effects.size();
    }

    private void add(NetworkHost host) {
        host.ports().forEach(port -> kind.of(port).forEach(this::effect));
        Map<Long, Map<String, Set<String>>> units = new HashMap<>();
        for (Way way : host.ways) {
            Set<String> through = kind.of(way);
            through.forEach(this::effect);
            if (way.isOnline) {
                // Listed twice, it fails with what both lead through.
                units.computeIfAbsent(way.unit, added -> new HashMap<>())
                    .merge(way.ends(), through, Ranking::common);
            }
        }
        units.forEach((unit, paths) -> count(paths.values()).forEach(
            (name, gone) -> effect(name).add(host, unit, paths.size(), gone)));
    }

    private static Map<String, Integer> count(Collection<Set<String>> paths) {
        Map<String, Integer> counts = new HashMap<>();
        paths.forEach(path -> path.forEach(name -> counts.merge(name, 1, Integer::sum)));
        return counts;
    }

    private static Set<String> common(Set<String> one, Set<String> other) {
        Set<String> common = new HashSet<>(one);
        common.retainAll(other);
        return common;
    }

    private Effect effect(String name) {
        return things.computeIfAbsent(name, Effect::new);
    }
}
