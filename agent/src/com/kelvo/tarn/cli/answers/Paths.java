package com.kelvo.tarn.cli.answers;

import java.util.ArrayList;
import java.util.Comparator;
import java.util.List;
import java.util.TreeMap;

/** The logical units behind the host's adapters, by their array's node name and their number there. */
public final class Paths {
    private static final Comparator<LogicalUnit> ORDER = Comparator.<LogicalUnit, String>comparing(unit -> unit.node)
        .thenComparing(unit -> unit.lun.longValue(), Long::compareUnsigned);

    /** By node name, then by number. */
    public final List<LogicalUnit> units;

    /**
     * Sorts what is seen by logical unit.
     *
     * @param fabric what is seen
     */
    public Paths(Fabric fabric) {
        boolean hasTwoPorts = fabric.ports().stream().filter(port -> port.instance != null).count() > 1;
        TreeMap<LogicalUnit, LogicalUnit> found = new TreeMap<>(ORDER);
        fabric.remotePorts().forEach(remote -> {
            for (int i = 0; i < remote.mappings.size(); i++) {
                if (remote.mappings.get(i) != null) {
                    LogicalUnit unit = new LogicalUnit(remote, remote.mappings.get(i), hasTwoPorts);
                    found.computeIfAbsent(unit, added -> added).paths.add(new LogicalUnit.Path(remote, i));
                }
            }
        });
        units = new ArrayList<>(found.values());
        units.forEach(unit -> unit.isOn(fabric.disks));
    }
}
