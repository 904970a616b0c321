package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.map.Topology.Edge;
import com.kelvo.tarn.cli.map.Topology.Group;
import com.kelvo.tarn.cli.map.Topology.Kind;
import com.kelvo.tarn.cli.map.Topology.Node;
import java.util.ArrayList;
import java.util.Collection;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;

/**
 * Where everything stands: a column for each kind, in each the things by their order, so that the pictures of two
 * hosts, or of one at two times, lie side by side. Lengths are points; heights grow upwards.
 */
final class Layout {
    /** A rectangle. */
    static final class Box {
        final double width;
        final double height;
        double x;
        double y;

        private Box(double width, double height) {
            this.width = width;
            this.height = height;
        }
    }

    private static final double FONT = 11;
    /** So much wider is what some systems have in place of Helvetica. */
    private static final double SUBSTITUTE = 1.13;
    private static final double LINE = 13.4;
    private static final double MARGIN = 12;
    private static final double BETWEEN = 11;
    private static final double BETWEEN_COLUMNS = 62;
    /** What a label at a line needs. */
    private static final double LABEL = 64;
    private static final double FRAME = 12;
    private static final double FRAME_TITLE = 16;
    private static final double BETWEEN_FRAMES = 16;
    /** So far apart things in a column of few may stand. */
    private static final double FAR = 46;

    /** Of the characters from the blank on in thousandths of the size, as Helvetica has. */
    private static final short[] WIDTHS = {
        278, 278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333, 278, 278, 556, 556, 556, 556, 556,
        556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556, 1015, 667, 667, 722, 722, 667, 611, 778, 722, 278,
        500, 667, 556, 833, 722, 778, 667, 778, 722, 667, 611, 722, 667, 944, 667, 667, 611, 278, 278, 278, 469,
        556, 333, 556, 556, 500, 556, 556, 278, 556, 556, 222, 222, 500, 222, 833, 556, 556, 556, 556, 333, 500,
        278, 556, 500, 722, 500, 500, 500, 334, 260, 334, 584};

    final Map<Node, Box> boxes = new HashMap<>();
    /** The frames around groups. */
    final Map<Group, Box> frames = new LinkedHashMap<>();
    private final Map<Edge, double[]> ends = new HashMap<>();
    /** The lowest of all. */
    private double bottom;

    /** Places all. Each thing's box holds the lines that the function tells. */
    Layout(Topology topology, Function<Node, List<String>> lines) {
        Map<Kind, List<Node>> columns = topology.nodes.values().stream()
            .sorted(Comparator.comparing(node -> node.order)).collect(Collectors.groupingBy(node -> node.kind));
        topology.nodes.values().forEach(node -> {
            List<String> shown = lines.apply(node);
            double widest = shown.stream().mapToDouble(line -> width(line) * (line == shown.get(0) ? 1.09 : 1))
                                .max().orElse(0);
            boxes.put(node, new Box(widest + 2 * MARGIN, shown.size() * LINE + MARGIN));
        });
        placeAcross(topology, columns);
        double height = placeArrays(topology, columns);
        List<Node> ports = columns.getOrDefault(Kind.PORT, List.of());
        List<Node> adapters = columns.getOrDefault(Kind.ADAPTER, List.of());
        spread(ports.isEmpty() ? adapters : ports, height);
        spread(columns.getOrDefault(Kind.FABRIC, List.of()), height);
        beside(adapters, topology.edges);
        spread(columns.getOrDefault(Kind.HOST, List.of()), height);
        bottom = boxes.values().stream().mapToDouble(box -> box.y - box.height / 2).min().orElse(0);
        frames.values().forEach(frame -> bottom = Math.min(bottom, frame.y - frame.height / 2));
        joinAll(topology.edges);
    }

    /** The width of a text at the size that boxes have. */
    static double width(String text) {
        return text.codePoints().map(character -> character - 32 >= 0 && character - 32 < WIDTHS.length
            ? WIDTHS[character - 32] : character < 0x1100 ? 600 : 1000).sum() * FONT * SUBSTITUTE / 1000;
    }

    /** A row of texts below everything, each in a box. */
    List<Box> below(List<String> texts) {
        List<Box> row = new ArrayList<>();
        double left = boxes.values().stream().mapToDouble(box -> box.x - box.width / 2).min().orElse(0);
        for (String text : texts) {
            Box box = new Box(width(text) + 2 * MARGIN, LINE + MARGIN);
            box.x = left + box.width / 2;
            box.y = bottom - 2 * BETWEEN_FRAMES - box.height / 2;
            left += box.width + BETWEEN;
            row.add(box);
        }
        return row;
    }

    /** The line as Graphviz takes it: a curve that leaves one box and enters the other level. */
    String curve(Edge edge) {
        Box from = boxes.get(edge.from);
        Box to = boxes.get(edge.to);
        double[] heights = ends.get(edge);
        double start = from.x + from.width / 2;
        double end = to.x - to.width / 2;
        double bend = Math.min(80, (end - start) / 2);
        return point(start, heights[0]) + " " + point(start + bend, heights[0]) + " "
            + point(end - bend, heights[1]) + " " + point(end, heights[1]);
    }

    /** Where a label of the line has its middle: before the end, above it. */
    String label(Edge edge) {
        Box to = boxes.get(edge.to);
        return point(to.x - to.width / 2 - 6 - width(edge.label) / 2, ends.get(edge)[1] + 7);
    }

    static String point(double x, double y) {
        return Math.round(x * 10) / 10.0 + "," + Math.round(y * 10) / 10.0;
    }

    private void placeAcross(Topology topology, Map<Kind, List<Node>> columns) {
        double left = 0;
        boolean labelled = topology.edges.stream().anyMatch(edge -> !edge.label.isEmpty());
        for (Kind kind : Kind.values()) {
            List<Node> column = columns.getOrDefault(kind, List.of());
            double width = column.stream().mapToDouble(node -> boxes.get(node).width).max().orElse(0);
            for (Node node : column) {
                Box box = new Box(width, boxes.get(node).height);
                box.x = left + width / 2;
                boxes.put(node, box);
            }
            left += column.isEmpty() ? 0
                : width + BETWEEN_COLUMNS + (kind == Kind.REMOTE_PORT && labelled ? LABEL : 0);
        }
    }

    /** Array below array, in each its ports beside its units; answers how high that is. */
    private double placeArrays(Topology topology, Map<Kind, List<Node>> columns) {
        Map<Node, Group> groups = new HashMap<>();
        topology.groups.values().forEach(group -> group.nodes.forEach(node -> groups.put(node, group)));
        Map<Group, List<List<Node>>> arrays = new LinkedHashMap<>();
        List<List<Node>> apart = List.of(new ArrayList<>(), new ArrayList<>());
        topology.groups.values().stream().sorted(Comparator.comparing(group -> group.title))
            .forEach(group -> arrays.put(group, List.of(new ArrayList<>(), new ArrayList<>())));
        for (int side = 0; side < 2; side++) {
            for (Node node : columns.getOrDefault(side == 0 ? Kind.REMOTE_PORT : Kind.UNIT, List.of())) {
                Group group = groups.get(node);
                (group == null ? apart : arrays.get(group)).get(side).add(node);
            }
        }
        double top = 0;
        for (Map.Entry<Group, List<List<Node>>> array : arrays.entrySet()) {
            top -= FRAME_TITLE + FRAME;
            double height = placePair(array.getValue(), top);
            frame(array.getKey(), top, height);
            top -= height + FRAME + BETWEEN_FRAMES;
        }
        return -top + placePair(apart, top);
    }

    private double placePair(List<List<Node>> sides, double top) {
        double height = sides.stream().mapToDouble(this::height).max().orElse(0);
        sides.forEach(side -> stack(side, top - (height - height(side)) / 2, BETWEEN));
        return height;
    }

    private void frame(Group group, double top, double height) {
        List<Box> within = group.nodes.stream().map(boxes::get).collect(Collectors.toList());
        double left = within.stream().mapToDouble(box -> box.x - box.width / 2).min().orElse(0) - FRAME;
        double right = within.stream().mapToDouble(box -> box.x + box.width / 2).max().orElse(0) + FRAME;
        right = Math.max(right, left + width(group.title) * 12 / FONT + 2 * FRAME);
        Box frame = new Box(right - left, height + 2 * FRAME + FRAME_TITLE);
        frame.x = (left + right) / 2;
        frame.y = top + FRAME + FRAME_TITLE - frame.height / 2;
        frames.put(group, frame);
    }

    private double height(Collection<Node> column) {
        return column.stream().mapToDouble(node -> boxes.get(node).height + BETWEEN).sum() - BETWEEN;
    }

    private void stack(List<Node> column, double top, double between) {
        for (Node node : column) {
            Box box = boxes.get(node);
            box.y = top - box.height / 2;
            top -= box.height + between;
        }
    }

    /** Around the middle of what is so high, or about that of 0. */
    private void spread(List<Node> column, double height) {
        double spare = column.size() < 2 ? 0 : (height - height(column)) / (column.size() + 1);
        double between = BETWEEN + Math.max(0, Math.min(FAR, spare));
        double whole = height(column) + (between - BETWEEN) * (column.size() - 1);
        stack(column, -(height - whole) / 2, between);
    }

    /** Each at the height of what it leads to, as far as the others leave room. */
    private void beside(List<Node> column, List<Edge> edges) {
        double top = Double.POSITIVE_INFINITY;
        for (Node node : column) {
            Box box = boxes.get(node);
            double middle = edges.stream().filter(edge -> edge.from == node).mapToDouble(edge -> boxes.get(edge.to).y)
                .average().orElse(Double.isInfinite(top) ? 0 : top - box.height / 2);
            box.y = Math.min(middle, top - box.height / 2);
            top = box.y - box.height / 2 - BETWEEN;
        }
    }

    /** The lines at a side of a box are as far apart as there is room for, and do not cross there. */
    private void joinAll(List<Edge> edges) {
        edges.forEach(edge -> ends.put(edge, new double[2]));
        for (int side = 0; side < 2; side++) {
            int end = side;
            Function<Edge, Node> near = edge -> end == 0 ? edge.from : edge.to;
            Function<Edge, Node> far = edge -> end == 0 ? edge.to : edge.from;
            edges.stream().collect(Collectors.groupingBy(near)).forEach((node, joined) -> {
                joined.sort(Comparator.comparing(edge -> -boxes.get(far.apply(edge)).y));
                Box box = boxes.get(node);
                double between = Math.min(7, (box.height - 10) / joined.size());
                for (int i = 0; i < joined.size(); i++) {
                    ends.get(joined.get(i))[end] = box.y + between * ((joined.size() - 1) / 2.0 - i);
                }
            });
        }
    }
}
