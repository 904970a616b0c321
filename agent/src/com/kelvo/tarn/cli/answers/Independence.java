package com.kelvo.tarn.cli.answers;

import java.util.ArrayList;
import java.util.Collection;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.function.Function;
import java.util.stream.Collectors;

/** Whether the paths of a unit stand and fall together, though the host and the array have more to offer. */
public final class Independence {
    /** What is wrong with a unit that has two paths online or more. */
    public enum Flaw {
        /** Another unit of its array has more. */
        FEWER_PATHS,
        /** All are from one adapter. */
        SHARED_ADAPTER,
        /** All go through one fabric. */
        SHARED_FABRIC,
        /** All end at one port of the array. */
        SHARED_ARRAY_PORT
    }

    private final boolean hasTwoAdapters;
    private final boolean hasTwoFabrics;
    private final Map<String, Set<String>> arrayPorts = new HashMap<>();
    private final Map<String, Long> mostPaths = new HashMap<>();

    /**
     * Learns what there is to choose from.
     *
     * @param fabric what the host sees
     * @param paths the same by unit
     */
    public Independence(Fabric fabric, Paths paths) {
        List<Fabric.Port> online = fabric.ports().stream().filter(port -> PortStates.isOnline(port.instance))
            .collect(Collectors.toList());
        hasTwoAdapters = isSeveral(online, port -> port.adapter.index);
        hasTwoFabrics = online.stream().map(Fabric.Port::fabric).filter(name -> !name.isEmpty()).distinct().count() > 1;
        for (LogicalUnit unit : paths.units) {
            mostPaths.merge(unit.node, unit.onlinePaths(), Math::max);
            Set<String> ports = arrayPorts.computeIfAbsent(unit.node, added -> new HashSet<>());
            unit.online().forEach(path -> ports.add(path.far()));
        }
    }

    /**
     * {@return what is wrong with a unit}
     *
     * @param unit one of those that the host sees
     */
    public List<Flaw> of(LogicalUnit unit) {
        List<LogicalUnit.Path> online = unit.online();
        if (online.size() < 2) {
            return List.of();
        }
        boolean[] has = {
            online.size() < mostPaths.get(unit.node),
            hasTwoAdapters && !isSeveral(online, path -> path.adapter),
            hasTwoFabrics && !online.get(0).fabric.isEmpty() && !isSeveral(online, path -> path.fabric),
            arrayPorts.get(unit.node).size() > 1 && !isSeveral(online, LogicalUnit.Path::far)};
        List<Flaw> flaws = new ArrayList<>();
        for (Flaw flaw : Flaw.values()) {
            if (has[flaw.ordinal()]) {
                flaws.add(flaw);
            }
        }
        return flaws;
    }

    /**
     * {@return whether its paths share an adapter, a fabric or a port of the array, though there are others}
     *
     * @param unit one of those that the host sees
     */
    public boolean isShared(LogicalUnit unit) {
        return of(unit).stream().anyMatch(flaw -> flaw != Flaw.FEWER_PATHS);
    }

    private static <T> boolean isSeveral(Collection<T> things, Function<T, Object> what) {
        Object first = null;
        for (T thing : things) {
            Object its = what.apply(thing);
            if (first != null && !its.equals(first)) {
                return true;
            }
            first = its;
        }
        return false;
    }
}
