package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;

/** Which paths came and went between two times. A path is the same while both its ports and its unit are. */
final class Changes {
    /** A path that is no more. */
    static final class Lost {
        final LogicalUnit unit;
        final LogicalUnit.Path path;

        private Lost(LogicalUnit unit, LogicalUnit.Path path) {
            this.unit = unit;
            this.path = path;
        }
    }

    final List<Lost> lost = new ArrayList<>();
    private final Set<LogicalUnit.Path> added = new HashSet<>();
    private final Set<String> unitsBefore = new HashSet<>();

    Changes(Paths now, Paths before) {
        Set<List<String>> keysNow = new HashSet<>();
        Set<List<String>> keysBefore = new HashSet<>();
        now.units.forEach(unit -> unit.paths.forEach(path -> keysNow.add(key(unit, path))));
        before.units.forEach(unit -> {
            unitsBefore.add(unit.place());
            unit.paths.stream().filter(path -> keysBefore.add(key(unit, path)) && !keysNow.contains(key(unit, path)))
                .forEach(path -> lost.add(new Lost(unit, path)));
        });
        now.units.forEach(unit -> unit.paths.stream().filter(path -> !keysBefore.contains(key(unit, path)))
                                      .forEach(added::add));
    }

    boolean isNew(LogicalUnit unit) {
        return !unitsBefore.contains(unit.place());
    }

    boolean isNew(LogicalUnit.Path path) {
        return added.contains(path);
    }

    int added() {
        return added.size();
    }

    /** What a port is known by at both times: its world-wide name; without one, its place. */
    static String near(Fabric.Port port) {
        String wwn = Instances.name(port.instance, HbaPortProvider.permanentAddress);
        return wwn.isEmpty() ? port.place() : wwn;
    }

    /** The same of a remote port. */
    static String far(Fabric.RemotePort remote) {
        return Wording.wwnOrPlace(remote);
    }

    private static List<String> key(LogicalUnit unit, LogicalUnit.Path path) {
        return List.of(unit.place(), path.near(), path.far());
    }
}
