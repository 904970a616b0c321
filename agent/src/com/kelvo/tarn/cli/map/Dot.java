package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.output.Page;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.regex.Pattern;
import java.util.stream.Collectors;

/** Writes a topology in the language of Graphviz. Whatever it names is text there, never markup. */
final class Dot {
    private static final String FONT = "Helvetica,Arial,sans-serif";

    private static final Pattern NOT_IN_XML = Pattern.compile("[\\p{Cs}\uFFFE\uFFFF]");
    private static final String LINE_END = "<br align=\"left\"/>";
    /** A box is so many characters wide at most; some names have hundreds. */
    private static final int WIDEST = 48;
    /** So many fabrics stand in the legend; there are two colours. */
    private static final int FEW_FABRICS = 2;
    private static final double INCH = 72;
    private static final List<Object> NOTHING = List.of();

    /** How each state is drawn: frame, fill, ink, width of the frame. */
    private enum Style {
        UNUSED(Palette.IDLE, Palette.IDLE_BOX, Palette.IDLE_INK, 1), GOOD(Palette.LINE, Palette.BOX, Palette.INK, 1),
        ONE_PATH(Palette.WARNING, Palette.WARNING_BOX, Palette.INK, 2),
        TROUBLE(Palette.TROUBLE, Palette.TROUBLE_BOX, Palette.INK, 2),
        LOST(Palette.TROUBLE, Palette.PAPER, Palette.INK, 2),
        ADDED(Palette.ADDED, Palette.ADDED_BOX, Palette.INK, 2);

        final Palette frame;
        final Palette fill;
        final Palette ink;
        final int width;

        Style(Palette frame, Palette fill, Palette ink, int width) {
            this.frame = frame;
            this.fill = fill;
            this.ink = ink;
            this.width = width;
        }

        static Style of(Topology.State state, Topology.Since since) {
            return since == Topology.Since.LOST ? LOST
                : since == Topology.Since.ADDED && state == Topology.State.GOOD ? ADDED : valueOf(state.name());
        }
    }

    /** A label that is no plain text. */
    private interface Markup {
        String text();
    }

    private final StringBuilder text = new StringBuilder();
    /** Null: Graphviz finds a place for each thing. */
    private final Layout layout;

    private Dot(Layout layout) {
        this.layout = layout;
    }

    /** The topology as text that ends with a newline. */
    static String of(Topology topology) {
        return write(topology, null);
    }

    /** The same with a place for each thing, and a legend. */
    static String placed(Topology topology) {
        return write(topology, new Layout(topology, node -> {
            List<String> lines = new ArrayList<>(List.of(printable(node.title)));
            node.lines.forEach(line -> lines.add(cut(printable(line))));
            node.reasons.forEach(reason -> lines.add(cut(printable(reason))));
            return lines;
        }));
    }

    private static String write(Topology topology, Layout layout) {
        Dot dot = new Dot(layout);
        dot.write(topology);
        return dot.text.toString();
    }

    /** The id of the thing's element in a picture. */
    static String id(Topology.Node node) {
        return "thing-" + node.number;
    }

    private void write(Topology topology) {
        text.append("digraph \"storage network\" {\n");
        statement("graph", "rankdir", "LR", "outputorder", "edgesfirst", "ranksep", "0.45", "nodesep", "0.18",
                  "fontname", FONT, "fontsize", "12", "fontcolor", Palette.FAINT, "bgcolor", Palette.PAPER);
        statement("node", "shape", "box", "style", "rounded,filled", "fontname", FONT, "fontsize", "11",
                  "margin", "0.16,0.07");
        statement("edge", "fontname", FONT, "fontsize", "10", "fontcolor", Palette.FAINT,
                  "dir", "none", "penwidth", "1.4");
        topology.nodes.values().forEach(this::node);
        int clusters = 0;
        int lines = 0;
        for (Topology.Group group : topology.groups.values()) {
            text.append("  subgraph \"cluster ").append(clusters++).append("\" {\n  ");
            statement("graph", "label", group.title, "style", "rounded,filled", "color", Palette.FRAME,
                      "labeljust", "l", "margin", "12", "tooltip", group.title,
                      layout == null ? NOTHING : frame(group));
            text.append("    ").append(group.nodes.stream().map(node -> quoted(node.name))
                                           .collect(Collectors.joining("; "))).append(";\n  }\n");
        }
        for (Topology.Edge edge : topology.edges) {
            edge(edge, "line-" + lines++);
        }
        if (layout != null) {
            legend(topology);
        }
        text.append("}\n");
    }

    private void node(Topology.Node node) {
        Style style = Style.of(node.state, node.since);
        boolean unused = node.state == Topology.State.UNUSED;
        Palette faint = unused ? style.ink : Palette.FAINT;
        Palette blame = unused ? style.ink : style.frame;
        String lines = "<b>" + markup(node.title) + "</b>" + LINE_END
            + node.lines.stream().map(line -> coloured(cut(line), faint)).collect(Collectors.joining())
            + node.reasons.stream().map(reason -> coloured(cut(reason), blame)).collect(Collectors.joining());
        boolean hued = style == Style.GOOD && node.hue != null;
        statement(quoted(node.name), "id", id(node), "label", (Markup) () -> lines,
                  "color", hued ? node.hue : style.frame, "fillcolor", style.fill, "fontcolor", style.ink,
                  "penwidth", hued ? "1.6" : style.width,
                  "tooltip", node.identifiers.isEmpty() ? node.name
                      : node.name + ": " + String.join(", ", node.identifiers),
                  style == Style.LOST ? List.of("style", "rounded,filled,dashed") : NOTHING,
                  layout == null ? NOTHING : place(layout.boxes.get(node)));
    }

    private void edge(Topology.Edge edge, String id) {
        Style style = Style.of(edge.state(), edge.since);
        Palette calm = edge.hue != null ? edge.hue : Palette.LINE;
        statement(quoted(edge.from.name) + " -> " + quoted(edge.to.name), "id", id,
                  "color", style == Style.ONE_PATH || style == Style.GOOD ? calm : style.frame,
                  "style", style == Style.UNUSED || style == Style.LOST ? "dashed" : "solid",
                  "label", edge.label, "tooltip", edge.hint,
                  layout == null ? NOTHING : List.of("pos", layout.curve(edge)),
                  layout == null || edge.label.isEmpty() ? NOTHING : List.of("lp", layout.label(edge)));
    }

    /** What the colours mean, as far as they are there. */
    private void legend(Topology topology) {
        Map<String, Style> meanings = new LinkedHashMap<>();
        meanings.put("in order", Style.GOOD);
        meanings.put("a warning", Style.ONE_PATH);
        meanings.put("in trouble", Style.TROUBLE);
        meanings.put("nothing is reached through it", Style.UNUSED);
        if (topology.compares) {
            meanings.put("was there before", Style.LOST);
            meanings.put("is new", Style.ADDED);
        }
        List<Topology.Node> fabrics = topology.nodes.values().stream().filter(node -> node.kind == Topology.Kind.FABRIC)
            .filter(node -> node.hue != null).sorted(Comparator.comparing(node -> node.order)).limit(FEW_FABRICS)
            .collect(Collectors.toList());
        List<String> texts = new ArrayList<>(meanings.keySet());
        fabrics.forEach(fabric -> texts.add("over " + fabric.title + " alone"));
        List<Layout.Box> row = layout.below(texts);
        for (int i = 0; i < texts.size(); i++) {
            Style style = meanings.getOrDefault(texts.get(i), Style.GOOD);
            statement(quoted("legend " + i), "label", texts.get(i), "class", "legend",
                      "color", i < meanings.size() ? style.frame : fabrics.get(i - meanings.size()).hue,
                      "fillcolor", style.fill, "fontcolor", style.ink,
                      "penwidth", i < meanings.size() ? style.width : 1.6, "tooltip", texts.get(i),
                      style == Style.LOST ? List.of("style", "rounded,filled,dashed") : NOTHING, place(row.get(i)));
        }
    }

    private static List<Object> place(Layout.Box box) {
        return List.of("pos", Layout.point(box.x, box.y), "width", box.width / INCH, "height", box.height / INCH,
                       "fixedsize", "true");
    }

    private List<Object> frame(Topology.Group group) {
        Layout.Box box = layout.frames.get(group);
        double left = box.x - box.width / 2;
        double top = box.y + box.height / 2;
        return List.of("bb", Layout.point(left, top - box.height) + "," + Layout.point(left + box.width, top),
                       "lp", Layout.point(left + 14 + Layout.width(group.title) * 6 / 11, top - 13));
    }

    /** Attributes are pairs of a name and a value, markup or anything else for its text; or a list of such pairs. */
    private void statement(String subject, Object... attributes) {
        List<Object> pairs = new ArrayList<>();
        for (Object attribute : attributes) {
            if (attribute instanceof List) {
                pairs.addAll((List<?>) attribute);
            } else {
                pairs.add(attribute);
            }
        }
        text.append("  ").append(subject).append(" [");
        for (int i = 0; i < pairs.size(); i += 2) {
            Object value = pairs.get(i + 1);
            text.append(i == 0 ? "" : ", ").append(pairs.get(i)).append('=')
                .append(value instanceof Markup ? "<" + ((Markup) value).text() + ">" : quoted(value.toString()));
        }
        text.append("];\n");
    }

    private static String coloured(String line, Palette colour) {
        return "<font color=\"" + colour + "\">" + markup(line) + "</font>" + LINE_END;
    }

    private static String cut(String line) {
        return line.codePointCount(0, line.length()) <= WIDEST ? line
            : line.substring(0, line.offsetByCodePoints(0, WIDEST - 1)) + "…";
    }

    /** Text within a label that is markup; Graphviz still puts names in place of backslash and letter. */
    private static String markup(String text) {
        return printable(text).replace("\\", "\\\\").replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
            .replace("\"", "&quot;");
    }

    /** Text as the value of an attribute, in which Graphviz reads names of characters as well. */
    private static String quoted(String text) {
        return '"' + printable(text).replace("\\", "\\\\").replace("&", "&amp;").replace("\"", "\\\"") + '"';
    }

    /** Text that a document of XML can hold. */
    static String printable(String text) {
        return NOT_IN_XML.matcher(Page.printable(text)).replaceAll("\ufffd");
    }
}
