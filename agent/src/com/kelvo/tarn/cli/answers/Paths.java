package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import java.util.Comparator;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

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
        Map<String, Map<Long, LogicalUnit>> found = new HashMap<>();
        fabric.remotePorts().forEach(remote -> {
            Map<Long, LogicalUnit> ofNode =
                found.computeIfAbsent(LogicalUnit.nodeOf(remote), added -> new HashMap<>());
            for (int i = 0; i < remote.mappings.size(); i++) {
                TrInstance mapping = remote.mappings.get(i);
                if (mapping != null) {
                    long lun = LogicalUnit.lunOf(mapping).longValue();
                    LogicalUnit unit = ofNode.get(lun);
                    if (unit == null) {
                        unit = new LogicalUnit(remote, mapping, hasTwoPorts);
                        ofNode.put(lun, unit);
                    }
                    unit.paths.add(new LogicalUnit.Path(remote, i));
                }
            }
        });
        units = found.values().stream().flatMap(ofNode -> ofNode.values().stream()).sorted(ORDER)
            .collect(Collectors.toList());
        units.forEach(unit -> unit.hasAllPaths(fabric.disks));
    }
}
