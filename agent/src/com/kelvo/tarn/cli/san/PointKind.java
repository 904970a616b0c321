package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.san.NetworkHost.Port;
import com.kelvo.tarn.cli.san.NetworkHost.Way;
import java.util.Locale;
import java.util.Set;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** The kinds of things that may be a single point of failure. */
public enum PointKind {
    /** A port of a host. */
    PORT(port -> port.wwn, way -> ""),
    /** A fabric. */
    FABRIC(port -> port.fabric, way -> ""),
    /** A switch, at either end of a path. */
    SWITCH(port -> port.switchOf(port.domain), way -> way.near.switchOf(way.farDomain)),
    /** A port of an array. */
    ARRAY_PORT(port -> "", way -> way.farWwn),
    /** A host bus adapter. */
    ADAPTER(Port::adapterName, way -> "");

    private final Function<Port, String> near;
    private final Function<Way, String> far;

    PointKind(Function<Port, String> near, Function<Way, String> far) {
        this.near = near;
        this.far = far;
    }

    Set<String> of(Port port) {
        return named(Stream.of(near.apply(port)));
    }

    Set<String> of(Way way) {
        return named(Stream.of(near.apply(way.near), far.apply(way)));
    }

    private static Set<String> named(Stream<String> names) {
        return names.filter(name -> !name.isEmpty()).collect(Collectors.toSet());
    }

    @Override
    public String toString() {
        return name().toLowerCase(Locale.ROOT).replace('_', '-');
    }
}
