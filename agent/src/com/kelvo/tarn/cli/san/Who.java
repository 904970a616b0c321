package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.san.NetworkHost.Port;
import com.kelvo.tarn.cli.san.NetworkHost.Way;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;
import java.util.TreeSet;
import java.util.stream.Collectors;

/** Which hosts see a thing, and through what. */
public final class Who {
    /** A host, with what of it has to do with the thing; a port that it only sees leads it to no unit. */
    public static final class Seer {
        /** Its name. */
        public final String host;
        /** The world-wide names of its ports. */
        public final TreeSet<String> ports = new TreeSet<>();
        /** The identities of the units that it reaches. */
        public final Set<String> units;
        /** What it calls them. */
        public final TreeSet<String> disks = new TreeSet<>();
        /** The same by unit. */
        public final transient TreeMap<String, TreeSet<String>> disksOfUnits = new TreeMap<>();

        private final transient Map<Long, TreeSet<String>> disksOfNumbers = new TreeMap<>();

        private Seer(NetworkHost host, Thing thing) {
            this.host = host.name;
            units = disksOfUnits.navigableKeySet();
            for (Port port : host.ports()) {
                if (thing.has(port)) {
                    ports.add(port.wwn);
                }
            }
            for (Way way : host.ways) {
                if (thing.has(way)) {
                    ports.add(way.near.wwn);
                    TreeSet<String> names = disksOfNumbers.computeIfAbsent(way.unit, added -> new TreeSet<>());
                    if (way.disk != null) {
                        names.add(way.disk);
                        disks.add(way.disk);
                    }
                }
            }
            ports.remove("");
        }

        private void name(Map<Long, String> identities) {
            disksOfNumbers.forEach((number, names) -> disksOfUnits.put(identities.get(number), names));
        }
    }

    /** As the user called it. */
    public final String thing;
    /** What it is. */
    public final String kind;
    /** By name. */
    public final List<Seer> hosts = new ArrayList<>();

    /**
     * Asks for all that has to do with a thing.
     *
     * @param store the store
     * @param asked the thing
     */
    public Who(Store store, Thing asked) {
        thing = asked.name;
        kind = asked.kind.toString();
        NetworkHost.each(store, asked.snapshots, host -> hosts.add(new Seer(host, asked)));
        hosts.sort(Comparator.comparing(seer -> seer.host));
        Map<Long, String> identities = UnitNames.identities(store, hosts.stream()
            .flatMap(seer -> seer.disksOfNumbers.keySet().stream()).collect(Collectors.toCollection(HashSet::new)));
        hosts.forEach(seer -> seer.name(identities));
    }
}
