package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.output.Page;
import java.util.regex.Pattern;
import java.util.stream.Collectors;

/** Writes a topology in the language of Graphviz. Whatever it names is text there, never markup. */
final class Dot {
    private static final String FONT = "Helvetica,Arial,sans-serif";

    private static final Pattern NOT_IN_XML = Pattern.compile("[\\p{Cs}\uFFFE\uFFFF]");
    private static final String LINE_END = "<br align=\"left\"/>";
    /** A box is so many characters wide at most; some names have hundreds. */
    private static final int WIDEST = 48;

    /** How each state is drawn: frame, fill, ink, width of the frame. */
    private enum Style {
        UNUSED(Palette.IDLE, Palette.IDLE_BOX, Palette.IDLE_INK, 1), GOOD(Palette.LINE, Palette.BOX, Palette.INK, 1),
        ONE_PATH(Palette.WARNING, Palette.WARNING_BOX, Palette.INK, 2),
        TROUBLE(Palette.TROUBLE, Palette.TROUBLE_BOX, Palette.INK, 2);

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

        static Style of(Topology.State state) {
            return valueOf(state.name());
        }
    }

    /** A label that is no plain text. */
    private interface Markup {
        String text();
    }

    private final StringBuilder text = new StringBuilder();

    private Dot() {
    }

    /** The topology as text that ends with a newline. */
    static String of(Topology topology) {
        Dot dot = new Dot();
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
                  "arrowsize", "0.5", "penwidth", "1.2");
        topology.nodes.values().forEach(this::node);
        int clusters = 0;
        int lines = 0;
        for (Topology.Group group : topology.groups.values()) {
            text.append("  subgraph \"cluster ").append(clusters++).append("\" {\n  ");
            statement("graph", "label", group.title, "style", "rounded,filled", "color", Palette.FRAME,
                      "labeljust", "l", "margin", "12", "tooltip", group.title);
            text.append("    ").append(group.nodes.stream().map(node -> quoted(node.name))
                                           .collect(Collectors.joining("; "))).append(";\n  }\n");
        }
        for (Topology.Edge edge : topology.edges) {
            edge(edge, "line-" + lines++);
        }
        text.append("}\n");
    }

    private void node(Topology.Node node) {
        Style style = Style.of(node.state);
        boolean unused = node.state == Topology.State.UNUSED;
        Palette faint = unused ? style.ink : Palette.FAINT;
        Palette blame = unused ? style.ink : style.frame;
        String lines = "<b>" + markup(node.title) + "</b>" + LINE_END
            + node.lines.stream().map(line -> coloured(cut(line), faint)).collect(Collectors.joining())
            + node.reasons.stream().map(reason -> coloured(reason, blame)).collect(Collectors.joining());
        statement(quoted(node.name), "id", id(node), "label", (Markup) () -> lines, "color", style.frame,
                  "fillcolor", style.fill, "fontcolor", style.ink, "penwidth", style.width, "tooltip", node.name);
    }

    private void edge(Topology.Edge edge, String id) {
        Style style = Style.of(edge.state());
        statement(quoted(edge.from.name) + " -> " + quoted(edge.to.name), "id", id,
                  "color", style == Style.ONE_PATH ? Palette.LINE : style.frame,
                  "style", style == Style.UNUSED ? "dashed" : "solid",
                  "label", edge.label, "tooltip", edge.hint);
    }

    /** Attributes are pairs of a name and a value: markup, or anything else for its text. */
    private void statement(String subject, Object... attributes) {
        text.append("  ").append(subject).append(" [");
        for (int i = 0; i < attributes.length; i += 2) {
            Object value = attributes[i + 1];
            text.append(i == 0 ? "" : ", ").append(attributes[i]).append('=')
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

    private static String printable(String text) {
        return NOT_IN_XML.matcher(Page.printable(text)).replaceAll("\ufffd");
    }
}
