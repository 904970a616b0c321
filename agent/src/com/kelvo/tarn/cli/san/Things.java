package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.answers.DeviceNames;
import com.kelvo.tarn.cli.answers.Identifiers;
import java.util.ArrayList;
import java.util.Collection;
import java.util.HashSet;
import java.util.List;
import java.util.Objects;
import java.util.Set;
import java.util.TreeSet;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** Finds what users name. */
public final class Things {
    private static final Pattern PLACE = Pattern.compile("([0-9a-f]+) lun (\\d{1,20})");
    /** A device of MPxIO, whose name has the digits of the volume's designator. */
    private static final Pattern MULTIPATHED = Pattern.compile("c\\d+t([0-9a-f]{16,})d\\d+");
    private static final List<String> DESIGNATORS = List.of("naa.", "eui.", "t10.");

    private static final String LATEST = "SELECT s.snapshot_id FROM latest_snapshot s WHERE s.snapshot_id IN (";
    private static final String BY_IDENTITY = "SELECT id FROM unit WHERE identity IN (:these)";
    private static final String BY_PLACE = "SELECT DISTINCT p.unit_id FROM latest_snapshot s"
        + " JOIN path p ON p.snapshot_id = s.snapshot_id"
        + " WHERE s.snapshot_id IN (SELECT g.snapshot_id FROM sight g WHERE g.remote_node = ?)"
        + " AND p.remote_node = ? AND p.lun = ?";
    private static final String BY_DISK = "SELECT DISTINCT p.unit_id FROM latest_snapshot s"
        + " JOIN path p ON p.snapshot_id = s.snapshot_id WHERE p.disk = ?";
    private static final String BY_MOUNT = "SELECT DISTINCT m.unit_id FROM latest_snapshot s"
        + " JOIN mount m ON m.snapshot_id = s.snapshot_id WHERE m.mount_point = ? AND m.unit_id IS NOT NULL";
    private static final String OF_HOST = " AND s.host = ?";

    private Things() {
    }

    /**
     * {@return what a name means; null for nothing in the network as it is at present}
     *
     * @param store where it is looked for
     * @param name the user's; "KIND:NAME" is of that kind alone
     * @throws IllegalArgumentException when things of several kinds have that name, saying how to call each
     */
    public static Thing find(Store store, String name) {
        int colon = name.indexOf(':');
        for (ThingKind kind : ThingKind.values()) {
            if (colon > 0 && name.substring(0, colon).equals(kind.toString())) {
                String rest = name.substring(colon + 1);
                Thing found = find(store, kind, rest, name);
                found = found == null && kind == ThingKind.UNIT ? unitOfAnyHost(store, rest, name) : found;
                if (found != null) {
                    return found;
                }
            }
        }
        List<Thing> found = Stream.of(ThingKind.values()).map(kind -> find(store, kind, name, name))
            .filter(Objects::nonNull).collect(Collectors.toList());
        if (found.size() > 1) {
            throw new IllegalArgumentException("'" + name + "' names several things: say " + found.stream()
                .map(thing -> "'" + thing.kind + ":" + name + "'").collect(Collectors.joining(" or ")));
        }
        return found.isEmpty() ? unitOfAnyHost(store, name, name) : found.get(0);
    }

    private static Thing find(Store store, ThingKind kind, String spelled, String name) {
        Set<Object> names = new HashSet<>(
            kind == ThingKind.UNIT ? units(store, spelled) : kind.spelling.apply(spelled));
        names.remove("");
        return thing(store, kind, names, name);
    }

    private static Thing thing(Store store, ThingKind kind, Set<?> names, String name) {
        TreeSet<Long> snapshots = new TreeSet<>(
            store.queryAbout(LATEST + kind.snapshots + ")", row -> row.getLong(1), names));
        return snapshots.isEmpty() ? null : new Thing(name, kind, names, snapshots);
    }

    /** By the name of a disk or of a mount point; that takes a look at all of them. */
    private static Thing unitOfAnyHost(Store store, String spelled, String name) {
        Set<Long> units = new HashSet<>(ids(store, BY_DISK, disk(spelled)));
        units.addAll(ids(store, BY_MOUNT, spelled));
        return thing(store, ThingKind.UNIT, units, name);
    }

    /** By identity, with or without its kind, a device of MPxIO, "NODE LUN 2", and what a host calls the disk. */
    private static Collection<Long> units(Store store, String name) {
        String plain = Identifiers.plain(name);
        Set<String> identities = new HashSet<>();
        Matcher device = MULTIPATHED.matcher(disk(plain));
        for (String digits : List.of(name, plain, device.matches() ? device.group(1) : plain)) {
            identities.add(digits);
            DESIGNATORS.forEach(kind -> identities.add(kind + digits));
        }
        Set<Long> found = new HashSet<>(store.queryAbout(BY_IDENTITY, row -> row.getLong(1), identities));
        Matcher place = PLACE.matcher(plain);
        if (place.matches()) {
            found.addAll(at(store, place.group(1), place.group(2)));
        }
        int colon = name.indexOf(':');
        if (colon > 0) {
            String onHost = name.substring(colon + 1);
            String host = name.substring(0, colon);
            found.addAll(ids(store, BY_DISK + OF_HOST, disk(onHost), host));
            found.addAll(ids(store, BY_MOUNT + OF_HOST, onHost, host));
        }
        return found;
    }

    private static Collection<Long> at(Store store, String node, String number) {
        try {
            return ids(store, BY_PLACE, node, node, Long.parseUnsignedLong(number));
        } catch (NumberFormatException beyond) {
            return List.of();
        }
    }

    private static Collection<Long> ids(Store store, String sql, Object... values) {
        return store.query(sql, row -> row.getLong(1), values);
    }

    private static String disk(String device) {
        return DeviceNames.withoutSlice(DeviceNames.withoutDirectory(device));
    }
}
