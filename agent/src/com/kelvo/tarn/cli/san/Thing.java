package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.san.NetworkHost.Port;
import com.kelvo.tarn.cli.san.NetworkHost.Way;
import java.util.Set;
import java.util.SortedSet;

/** Something in the storage network that the user has named. */
public final class Thing {
    /** As the user called it. */
    public final String name;
    /** What it is. */
    public final ThingKind kind;
    /** The latest snapshots of the hosts that have to do with it; at least one. */
    final SortedSet<Long> snapshots;
    private final Set<?> names;

    Thing(String name, ThingKind kind, Set<?> names, SortedSet<Long> snapshots) {
        this.name = name;
        this.kind = kind;
        this.names = names;
        this.snapshots = snapshots;
    }

    boolean has(Port port) {
        return kind.has(port, names);
    }

    /** Whether the path leads through it. */
    boolean has(Way way) {
        return kind.has(way, names);
    }
}
