package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.ArrayList;
import java.util.Collection;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;

/** Which things share a box: many that look alike, unless all are asked for. */
final class Grouping {
    /**
     * So many logical units are drawn one by one, each path a line; of more, those of an array that look alike share a
     * box, and paths with the same ends a line.
     */
    private static final int FEW_UNITS = 256;
    private static final int FEW_PATHS = 512;
    /** So many logical units of an array are drawn one by one while there are few, and once there are more. */
    private static final int FEW_OF_ARRAY = 32;
    private static final int FEW_OF_ARRAY_OF_MANY = 4;
    /** So many remote ports are drawn one by one; of more, those that look alike share a box. */
    private static final int FEW_REMOTE_PORTS = 64;
    /** So many boxes differ in their paths; of more, only by how they do. */
    private static final int FEW_BOXES = 64;
    private static final int FEW_BOXES_OF_ARRAY = 8;

    /** A remote port, and how each port of the host sees it. */
    static final class Remote {
        final List<Fabric.RemotePort> views = new ArrayList<>();

        Fabric.RemotePort first() {
            return views.get(0);
        }

        /** Empty when it cannot be read. */
        String wwn() {
            return Instances.name(first().instance, HbaPortProvider.permanentAddress);
        }

        /** The array's node name; empty when it is not known. */
        String node() {
            return Instances.name(first().instance, HbaPortProvider.nodeWWN);
        }

        boolean hasNoUnits() {
            return views.stream().allMatch(view -> view.mappings.isEmpty());
        }
    }

    private final Paths paths;
    private final boolean all;
    /** In the order in which they are first seen. */
    final Collection<Remote> remotes;
    /** Whether each remote port has a box of its own. */
    final boolean apart;
    /** Whether each path is a line. */
    final boolean eachPath;

    Grouping(Fabric fabric, Paths paths, boolean all) {
        this.paths = paths;
        this.all = all;
        Map<Object, Remote> found = new LinkedHashMap<>();
        fabric.remotePorts().forEach(view -> {
            String wwn = Instances.name(view.instance, HbaPortProvider.permanentAddress);
            found.computeIfAbsent(
                wwn.isEmpty() ? view : List.of(Instances.name(view.instance, HbaPortProvider.nodeWWN), wwn),
                absent -> new Remote()).views.add(view);
        });
        remotes = found.values();
        apart = all || remotes.size() <= FEW_REMOTE_PORTS;
        eachPath = all || paths.units.stream().mapToInt(unit -> unit.paths.size()).sum() <= FEW_PATHS;
    }

    /** The remote ports of each box, by what is wrong with them. */
    Collection<List<Remote>> remotePorts(Map<String, List<String>> findings) {
        Function<Remote, Object> looks = remote -> List.of(
            remote.views.stream().flatMap(view -> findings.getOrDefault(view.place(), List.of()).stream()).distinct()
                .collect(Collectors.toList()), remote.hasNoUnits());
        return apart ? oneByOne(remotes)
            : boxes(remotes, remote -> List.of(looks.apply(remote), remote.views.stream().map(view -> view.port)
                        .collect(Collectors.toList())), looks, FEW_BOXES);
    }

    /** The logical units of each box, by what is remarked on them and by what is drawn of their paths so far. */
    List<List<LogicalUnit>> units(Function<LogicalUnit, String> remark, Function<LogicalUnit, Object> drawn) {
        int few = paths.units.size() <= FEW_UNITS && eachPath ? FEW_OF_ARRAY : FEW_OF_ARRAY_OF_MANY;
        List<List<LogicalUnit>> boxes = new ArrayList<>();
        for (List<LogicalUnit> units : lots(paths.units, unit -> apart ? unit.node : "")) {
            boxes.addAll(all || units.size() <= few ? oneByOne(units)
                : boxes(units, unit -> List.of(remark.apply(unit), drawn.apply(unit)), remark::apply,
                        apart ? FEW_BOXES_OF_ARRAY : FEW_BOXES));
        }
        return boxes;
    }

    private static <T> Collection<List<T>> oneByOne(Collection<T> items) {
        return items.stream().map(List::of).collect(Collectors.toList());
    }

    /** Items that look alike in both respects; when that makes too many lots, those that do in the second. */
    private static <T> Collection<List<T>> boxes(Collection<T> items, Function<T, Object> finely,
                                                 Function<T, Object> coarsely, int most) {
        Collection<List<T>> fine = lots(items, finely);
        return fine.size() <= most ? fine : lots(items, coarsely);
    }

    private static <T> Collection<List<T>> lots(Collection<T> items, Function<T, Object> by) {
        return items.stream().collect(Collectors.groupingBy(by, LinkedHashMap::new, Collectors.toList())).values();
    }
}
