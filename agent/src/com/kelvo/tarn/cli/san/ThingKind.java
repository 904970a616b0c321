package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.answers.Identifiers;
import com.kelvo.tarn.cli.san.NetworkHost.Port;
import com.kelvo.tarn.cli.san.NetworkHost.Way;
import java.util.Locale;
import java.util.Set;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** The kinds of things that can be asked about. */
public enum ThingKind {
    /** A port of a host or of an array, by its world-wide name. */
    PORT("SELECT snapshot_id FROM port WHERE wwn IN (:these)"
         + " UNION SELECT snapshot_id FROM sight WHERE remote_wwn IN (:these)",
         ThingKind::plain, port -> Stream.of(port.wwn), way -> Stream.of(way.farWwn)),
    /** An array, or a controller of one, by its node name. */
    ARRAY("SELECT snapshot_id FROM sight WHERE units > 0 AND remote_node IN (:these)",
          ThingKind::plain, port -> Stream.empty(), way -> Stream.of(way.farNode)),
    /** A fabric, by its name. */
    FABRIC("SELECT snapshot_id FROM port WHERE fabric IN (:these)",
           ThingKind::plain, port -> Stream.of(port.fabric), way -> Stream.empty()),
    /** A switch: the fabric and the domain; a path leads through those of both its ends. */
    SWITCH("SELECT snapshot_id FROM port WHERE domain <> 0 AND fabric || '/' || domain IN (:these)"
           + " UNION SELECT snapshot_id FROM sight WHERE remote_domain <> 0"
           + " AND fabric || '/' || remote_domain IN (:these)",
           ThingKind::plain, port -> Stream.of(port.switchOf(port.domain)),
           way -> Stream.of(way.near.switchOf(way.farDomain))),
    /** A logical unit; its names here are the store's numbers of all units that are called so. */
    UNIT("SELECT snapshot_id FROM reach WHERE unit_id IN (:these)",
         name -> Set.of(), port -> Stream.empty(), way -> Stream.of(way.unit)),
    /** A host bus adapter, by its host and its number, or by its node name. */
    ADAPTER("SELECT snapshot_id FROM adapter WHERE node_wwn IN (:these) UNION SELECT a.snapshot_id"
            + " FROM latest_snapshot s JOIN adapter a ON a.snapshot_id = s.snapshot_id"
            + " WHERE s.host || '/' || a.adapter IN (:these)",
            name -> Stream.of(Set.of(name), plain(name)).flatMap(Set::stream).collect(
                Collectors.toSet()),
            port -> Stream.of(port.adapterName(), port.nodeWwn), way -> Stream.empty()),
    /** A model of adapters. */
    MODEL("SELECT snapshot_id FROM adapter WHERE model IN (:these)",
          Set::of, port -> Stream.of(port.model), way -> Stream.empty()),
    /** A version of adapters' firmware. */
    FIRMWARE("SELECT snapshot_id FROM adapter WHERE firmware IN (:these)",
             Set::of, port -> Stream.of(port.firmware), way -> Stream.empty()),
    /** A host, by its name. */
    HOST("SELECT snapshot_id FROM latest_snapshot WHERE host IN (:these)",
         Set::of, port -> Stream.of(port.host), way -> Stream.empty());

    /** The snapshots that have to do with any of these names. */
    final String snapshots;
    /** How the store spells what a user calls it. */
    final Function<String, Set<String>> spelling;
    /** The names of those that a port is of. */
    private final Function<Port, Stream<?>> ofPort;
    /** The names of those that a path is of by what is beyond its port. */
    private final Function<Way, Stream<?>> ofFarEnd;

    ThingKind(String snapshots, Function<String, Set<String>> spelling, Function<Port, Stream<?>> ofPort,
              Function<Way, Stream<?>> ofFarEnd) {
        this.snapshots = snapshots;
        this.spelling = spelling;
        this.ofPort = ofPort;
        this.ofFarEnd = ofFarEnd;
    }

    private static Set<String> plain(String name) {
        return Set.of(Identifiers.plain(name));
    }

    boolean has(Port port, Set<?> names) {
        return ofPort.apply(port).anyMatch(names::contains);
    }

    boolean has(Way way, Set<?> names) {
        return ofFarEnd.apply(way).anyMatch(names::contains) || has(way.near, names);
    }

    @Override
    public String toString() {
        return name().toLowerCase(Locale.ROOT);
    }
}
