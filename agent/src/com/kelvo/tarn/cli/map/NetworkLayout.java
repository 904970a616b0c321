package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.san.NetworkTopology;
import com.kelvo.tarn.cli.san.NetworkTopology.Array;
import com.kelvo.tarn.cli.san.NetworkTopology.ArrayPort;
import com.kelvo.tarn.cli.san.NetworkTopology.Fabric;
import com.kelvo.tarn.cli.san.NetworkTopology.Switch;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.Collectors;

/**
 * Where everything of a network stands: groups of hosts to the left, fabrics with their switches in the middle, arrays
 * with their ports to the right. Parts of the network that no path joins stand apart, so that neither is higher than
 * it has to be. Lengths are pixels, heights grow downwards.
 */
final class NetworkLayout {
    /** A rectangle that stands for a thing. */
    static final class Box {
        /** A {@link HostGroup}, or a thing of the network. */
        final Object thing;
        final double width;
        final double height;
        /** Those that it frames. */
        final List<Box> inner;
        double x;
        double y;
        /** From where on lines bend: beyond this nothing stands in their way. */
        double exit;

        private Box(Object thing, double width, double height, List<Box> inner) {
            this.thing = thing;
            this.width = width;
            this.height = height;
            this.inner = inner;
        }

        double middle() {
            return y + height / 2;
        }
    }

    /** The paths from one box to another. */
    static final class Line {
        final Box from;
        final Box to;
        /** The fabric that the paths run in; null for one without a name. */
        final Fabric fabric;
        long paths;
        long online;

        private Line(Box from, Box to, Fabric fabric) {
            this.from = from;
            this.to = to;
            this.fabric = fabric;
        }
    }

    /** What paths join. */
    private static final class Part {
        final List<Box> groups = new ArrayList<>();
        final List<Box> fabrics = new ArrayList<>();
        final List<Box> arrays = new ArrayList<>();
        double width;
        double height;

        private int size() {
            return groups.stream().mapToInt(box -> ((HostGroup) box.thing).hosts.size()).sum();
        }
    }

    private static final double WIDTH = 196;
    private static final double ARRAY_WIDTH = 256;
    private static final double GROUP = 36;
    private static final double BETWEEN_GROUPS = 9;
    private static final double SWITCH = 26;
    private static final double PORT = 18;
    private static final double TITLE = 23;
    private static final double PADDING = 10;
    /** Where lines between switches bend. */
    static final double BEND = 22;
    private static final double BETWEEN_ROWS = 3;
    private static final double BETWEEN_FRAMES = 14;
    private static final double BETWEEN_PARTS = 56;
    /** So many groups stand below each other; more stand in two columns. */
    private static final int MOST_IN_COLUMN = 20;
    private static final double LEAST_GAP = 110;
    private static final double MOST_GAP = 320;
    /** A screen, or a sheet of paper, is so much wider than high. */
    private static final double SHEET = 1.5;

    final Map<Object, Box> boxes = new LinkedHashMap<>();
    final List<Line> lines = new ArrayList<>();
    /** Every second one of the fabrics that stand together. */
    final Set<Fabric> second = new HashSet<>();
    double width;
    double height;

    NetworkLayout(NetworkTopology network, List<HostGroup> groups) {
        groups.forEach(group -> add(group, WIDTH, GROUP, List.of()));
        network.switches.stream().sorted(Comparator.comparing(at -> at.domain))
            .collect(Collectors.groupingBy(at -> at.fabric, LinkedHashMap::new, Collectors.toList()))
            .forEach((fabric, switches) -> frame(fabric, WIDTH - 2 * PADDING, BEND, SWITCH, switches));
        network.arrayPorts.stream().sorted(Comparator.comparing((ArrayPort port) -> port.wwn))
            .collect(Collectors.groupingBy(port -> port.array, LinkedHashMap::new, Collectors.toList()))
            .forEach((array, ports) -> frame(array, ARRAY_WIDTH - 2 * PADDING, 0, PORT, ports));
        Map<String, Line> known = new LinkedHashMap<>();
        for (HostGroup group : groups) {
            for (HostGroup.Bundle bundle : group.bundles) {
                if (bundle.near == null) {
                    add(known, group, bundle.far, null, bundle);
                } else {
                    add(known, group, bundle.near, bundle.near.fabric, bundle);
                    if (bundle.near != bundle.far.at) {
                        add(known, bundle.near, bundle.far.at, bundle.near.fabric, bundle);
                    }
                    add(known, bundle.far.at, bundle.far, bundle.near.fabric, bundle);
                }
            }
            for (Switch at : group.switches()) {
                add(known, group, at, at.fabric, null);
            }
        }
        lines.addAll(known.values());
        List<Part> parts = parts(network, groups);
        parts.forEach(this::place);
        arrange(parts);
    }

    private Box add(Object thing, double wide, double high, List<Box> inner) {
        Box box = new Box(thing, wide, high, inner);
        boxes.put(thing, box);
        return box;
    }

    /** A frame around boxes of that size, with room beside them. */
    private void frame(Object thing, double wide, double beside, double high, List<?> things) {
        List<Box> inner = things.stream().map(each -> add(each, wide, high, List.of())).collect(Collectors.toList());
        add(thing, wide + 2 * PADDING + beside, TITLE + inner.size() * (high + BETWEEN_ROWS) + PADDING - BETWEEN_ROWS,
            inner);
    }

    private void add(Map<String, Line> known, Object from, Object to, Fabric fabric, HostGroup.Bundle bundle) {
        Box start = boxes.get(from);
        Box end = boxes.get(to);
        Line line = known.computeIfAbsent(System.identityHashCode(start) + " " + System.identityHashCode(end),
                                          added -> new Line(start, end, fabric));
        if (bundle != null) {
            line.paths += bundle.paths;
            line.online += bundle.online;
        }
    }

    /** The parts of the network, the one with the most hosts first. */
    private List<Part> parts(NetworkTopology network, List<HostGroup> groups) {
        Map<Object, Object> towards = new HashMap<>();
        for (Line line : lines) {
            Object one = end(towards, whole(line.from.thing));
            Object other = end(towards, whole(line.to.thing));
            if (one != other) {
                towards.put(one, other);
            }
        }
        Set<Object> joined = lines.stream().map(line -> line.from.thing).collect(Collectors.toSet());
        Map<Object, Part> parts = new LinkedHashMap<>();
        Object unconnected = new Object();
        for (HostGroup group : groups) {
            parts.computeIfAbsent(joined.contains(group) ? end(towards, group) : unconnected, added -> new Part())
                .groups.add(boxes.get(group));
        }
        network.fabrics.forEach(fabric -> parts.get(end(towards, fabric)).fabrics.add(boxes.get(fabric)));
        network.arrays.forEach(array -> parts.get(end(towards, array)).arrays.add(boxes.get(array)));
        List<Part> sorted = new ArrayList<>(parts.values());
        sorted.sort(Comparator.comparing(Part::size).reversed());
        return sorted;
    }

    /** What a thing is a piece of. */
    private static Object whole(Object thing) {
        return thing instanceof Switch ? ((Switch) thing).fabric
            : thing instanceof ArrayPort ? ((ArrayPort) thing).array : thing;
    }

    private static Object end(Map<Object, Object> towards, Object thing) {
        Object end = thing;
        while (towards.containsKey(end)) {
            end = towards.get(end);
        }
        if (end != thing) {
            towards.put(thing, end); // a shorter way for who asks next
        }
        return end;
    }

    /** Places what is in the part, from its own corner on. */
    private void place(Part part) {
        part.fabrics.sort(Comparator.comparing(box -> ((Fabric) box.thing).name));
        for (int i = 1; i < part.fabrics.size(); i += 2) {
            second.add((Fabric) part.fabrics.get(i).thing);
        }
        part.arrays.sort(Comparator.comparing(box -> ((Array) box.thing).node));
        stack(part.arrays, BETWEEN_FRAMES);
        Map<Object, Double> heights = new HashMap<>();
        part.groups.forEach(box -> heights.put(box.thing, ((HostGroup) box.thing).bundles.stream()
            .mapToDouble(bundle -> boxes.get(bundle.far).middle()).average().orElse(Double.MAX_VALUE)));
        part.groups.sort(Comparator.comparing((Box box) -> heights.get(box.thing))); // fewer lines cross
        boolean two = part.groups.size() > MOST_IN_COLUMN;
        double pitch = (GROUP + BETWEEN_GROUPS) / (two ? 2 : 1);
        double groupsHeight = part.groups.isEmpty() ? 0 : (part.groups.size() - 1) * pitch + GROUP;
        double arraysHeight = stack(part.arrays, BETWEEN_FRAMES);
        double fabricsHeight = stack(part.fabrics, BETWEEN_FRAMES);
        part.height = Math.max(groupsHeight, Math.max(arraysHeight, fabricsHeight));
        double gap = Math.min(MOST_GAP, Math.max(LEAST_GAP, part.height / 5));
        double right = two ? 2 * WIDTH + BETWEEN_FRAMES : WIDTH;
        for (int i = 0; i < part.groups.size(); i++) {
            // Where there are two columns, the lines of the left one run through the gaps of the right one.
            part.groups.get(i).x = two && i % 2 == 1 ? WIDTH + BETWEEN_FRAMES : 0;
            part.groups.get(i).y = (part.height - groupsHeight) / 2 + i * pitch;
        }
        spread(part.fabrics, part.height, fabricsHeight, right + gap);
        part.width = right;
        if (!part.fabrics.isEmpty()) {
            part.width = right + gap + WIDTH + BEND;
        }
        if (!part.arrays.isEmpty()) {
            spread(part.arrays, part.height, arraysHeight, part.width + gap);
            part.width += gap + ARRAY_WIDTH;
        }
        part.groups.forEach(box -> box.exit = right);
    }

    /** Places boxes below each other; returns how high they are together. */
    private static double stack(List<Box> stacked, double between) {
        double y = 0;
        for (Box box : stacked) {
            box.y = y;
            y += box.height + between;
        }
        return Math.max(0, y - between);
    }

    /** Moves stacked boxes apart, as far as the height lets them. */
    private static void spread(List<Box> stacked, double height, double taken, double x) {
        double slack = (height - taken) / (stacked.size() + 1);
        for (int i = 0; i < stacked.size(); i++) {
            stacked.get(i).x = x;
            stacked.get(i).y += slack * (i + 1);
        }
    }

    /** Places the parts in as many columns as show them largest on a sheet. */
    private void arrange(List<Part> parts) {
        double best = 0;
        List<List<Part>> chosen = List.of();
        for (int count = 1; count <= parts.size(); count++) {
            List<List<Part>> columns = columns(parts, count);
            double wide = columns.stream().mapToDouble(NetworkLayout::wide).sum() + (count - 1) * BETWEEN_PARTS;
            double high = columns.stream().mapToDouble(NetworkLayout::high).max().orElse(1);
            double scale = Math.min(SHEET / wide, 1 / high);
            if (scale > best) {
                best = scale;
                chosen = columns;
            }
        }
        double x = 0;
        for (List<Part> column : chosen) {
            double y = 0;
            for (Part part : column) {
                move(part, x, y);
                y += part.height + BETWEEN_PARTS;
            }
            height = Math.max(height, y - BETWEEN_PARTS);
            x += wide(column) + BETWEEN_PARTS;
        }
        width = Math.max(0, x - BETWEEN_PARTS);
    }

    private static List<List<Part>> columns(List<Part> parts, int count) {
        List<List<Part>> columns = new ArrayList<>();
        for (int i = 0; i < count; i++) {
            columns.add(new ArrayList<>());
        }
        parts.forEach(part -> columns.stream().min(Comparator.comparing(NetworkLayout::high)).orElseThrow().add(part));
        return columns;
    }

    private static double wide(List<Part> column) {
        return column.stream().mapToDouble(part -> part.width).max().orElse(0);
    }

    private static double high(List<Part> column) {
        return column.stream().mapToDouble(part -> part.height + BETWEEN_PARTS).sum();
    }

    private void move(Part part, double x, double y) {
        for (List<Box> column : List.of(part.groups, part.fabrics, part.arrays)) {
            for (Box box : column) {
                box.x += x;
                box.y += y;
                box.exit += x;
                double below = box.y + TITLE;
                for (Box inner : box.inner) {
                    inner.x = box.x + PADDING;
                    inner.exit = inner.x + inner.width;
                    inner.y = below;
                    below += inner.height + BETWEEN_ROWS;
                }
            }
        }
    }
}
