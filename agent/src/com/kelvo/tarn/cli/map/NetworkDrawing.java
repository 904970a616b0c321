package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.map.NetworkLayout.Box;
import com.kelvo.tarn.cli.map.NetworkLayout.Line;
import com.kelvo.tarn.cli.san.NetworkTopology.Array;
import com.kelvo.tarn.cli.san.NetworkTopology.ArrayPort;
import com.kelvo.tarn.cli.san.NetworkTopology.Fabric;
import com.kelvo.tarn.cli.san.NetworkTopology.Switch;
import java.util.Locale;
import java.util.Map;

/** Draws a network whose things have their places, as SVG. */
final class NetworkDrawing {
    private static final double MARGIN = 14;
    /** So many characters fit in a line of a box. */
    private static final int FITTING = 29;
    private static final int FITTING_SMALL = 38;
    private static final int FITTING_AFAR = 16;

    private final StringBuilder text = new StringBuilder();
    private final NetworkLayout layout;
    /** Null for what is in order. */
    private final Map<Object, String> severities;

    private NetworkDrawing(NetworkLayout layout, Map<Object, String> severities) {
        this.layout = layout;
        this.severities = severities;
    }

    /**
     * An element "svg".
     *
     * @param severities "critical" or "warning" for each thing with which something is wrong
     */
    static String of(NetworkLayout layout, Map<Object, String> severities) {
        NetworkDrawing drawing = new NetworkDrawing(layout, severities);
        drawing.draw();
        return drawing.text.toString();
    }

    /** The id of the thing's element. */
    static String id(Object thing) {
        return thing instanceof HostGroup ? "g" + ((HostGroup) thing).number
            : thing instanceof Fabric ? "f" + ((Fabric) thing).number
            : thing instanceof Switch ? "s" + ((Switch) thing).number
            : thing instanceof Array ? "a" + ((Array) thing).number : "p" + ((ArrayPort) thing).number;
    }

    private void draw() {
        double width = layout.width + 2 * MARGIN;
        double height = layout.height + 2 * MARGIN;
        add("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" viewBox=\"%.0f %.0f %.0f %.0f\""
            + " font-family=\"Helvetica,Arial,sans-serif\" font-size=\"11\">\n<g class=\"graph\">\n",
            width, height, -MARGIN, -MARGIN, width, height);
        layout.boxes.values().stream().filter(box -> isFrame(box.thing)).forEach(this::frame);
        layout.lines.forEach(this::line);
        layout.boxes.values().stream().filter(box -> !isFrame(box.thing)).forEach(this::box);
        text.append("</g>\n</svg>\n");
    }

    private static boolean isFrame(Object thing) {
        return thing instanceof Fabric || thing instanceof Array;
    }

    private void frame(Box box) {
        open(box, "frame");
        rectangle(box, 6, Palette.FRAME, Palette.FRAME, 1);
        if (box.thing instanceof Fabric) {
            Fabric fabric = (Fabric) box.thing;
            label(box, 10, 15, "", colour(fabric), "Fabric " + fabric.name, FITTING);
            afar(box, 10, 18, colour(fabric), fabric.name);
        } else {
            Array array = (Array) box.thing;
            String name = "Array " + array.node;
            label(box, 10, 15, "", Palette.INK, name, FITTING);
            label(box, box.width - 10, 15, " font-size=\"9\" text-anchor=\"end\"", Palette.FAINT, array.product(),
                  Math.max(0, FITTING_SMALL - name.length()));
            afar(box, 10, 18, Palette.INK, array.node);
        }
        text.append("</g>\n");
    }

    private void box(Box box) {
        String severity = severities.get(box.thing);
        boolean isGroup = box.thing instanceof HostGroup;
        open(box, isGroup ? "node group" : "node");
        rectangle(box, isGroup ? 5 : 4, severity == null ? Palette.BOX : severity.equals("critical")
                      ? Palette.TROUBLE_BOX : Palette.WARNING_BOX,
                  severity == null ? Palette.LINE : severity.equals("critical") ? Palette.TROUBLE : Palette.WARNING,
                  severity == null ? 1 : 2);
        if (isGroup) {
            HostGroup group = (HostGroup) box.thing;
            String count = group.hosts.size() == 1 ? "" : String.valueOf(group.hosts.size());
            label(box, 8, 15, " font-weight=\"bold\"", Palette.INK, group.names(), FITTING - 3 - count.length());
            label(box, box.width - 8, 15, " text-anchor=\"end\"", Palette.ACCENT,
                  count.isEmpty() ? "" : count + " +", FITTING);
            label(box, 8, 29, " font-size=\"10\"", Palette.FAINT, group.ports(), FITTING_SMALL);
            afar(box, 8, 27, Palette.INK, group.names());
        } else if (box.thing instanceof Switch) {
            int domain = ((Switch) box.thing).domain;
            String name = domain == 0 ? "no switch told" : "Switch " + domain;
            label(box, 8, 17, "", Palette.INK, name, FITTING);
            afar(box, 8, 21, Palette.INK, name);
        } else {
            label(box, 8, 13, "", Palette.INK, ((ArrayPort) box.thing).wwn, FITTING);
        }
        text.append("</g>\n");
    }

    /** What stands in the box where all is seen from so far away that nothing else could be read. */
    private void afar(Box box, double right, double down, Palette ink, String words) {
        label(box, right, down, " class=\"far\" display=\"none\" font-size=\"20\"", ink, words, FITTING_AFAR);
    }

    private void line(Line line) {
        double x1 = line.from.x + line.from.width;
        double y1 = line.from.middle();
        double y2 = line.to.middle();
        String way;
        if (line.from.thing instanceof Switch && line.to.thing instanceof Switch) {
            double out = x1 + NetworkLayout.BEND + 6;
            way = String.format(Locale.ROOT, "M%.1f,%.1fC%.1f,%.1f %.1f,%.1f %.1f,%.1f", x1, y1, out, y1, out, y2,
                                x1, y2);
        } else {
            double start = line.from.exit;
            double bend = (line.to.x - start) / 2;
            way = String.format(Locale.ROOT, "M%.1f,%.1fH%.1fC%.1f,%.1f %.1f,%.1f %.1f,%.1f", x1, y1, start,
                                start + bend, y1, line.to.x - bend, y2, line.to.x, y2);
        }
        add("<path class=\"line\" data-from=\"%s\" data-to=\"%s\" fill=\"none\" stroke=\"%s\" stroke-width=\"%.1f\"%s"
            + " d=\"%s\"/>\n", id(line.from.thing), id(line.to.thing),
            line.online == 0 ? Palette.IDLE : colour(line.fabric), thickness(line.paths),
            line.online == 0 ? " stroke-dasharray=\"4 3\"" : "", way);
    }

    /** Grows with the number's length: a hundred times the paths are two and a half pixels more. */
    private static double thickness(long paths) {
        return 0.8 + 1.25 * Math.log10(1.0 + paths);
    }

    /** Every second fabric of those that stand together has the other colour. */
    private Palette colour(Fabric fabric) {
        return fabric == null ? Palette.LINE : layout.second.contains(fabric) ? Palette.FABRIC_B : Palette.FABRIC_A;
    }

    private void open(Box box, String kind) {
        add("<g id=\"%s\" class=\"%s\">", id(box.thing), kind);
    }

    private void rectangle(Box box, int round, Palette fill, Palette stroke, int width) {
        add("<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" rx=\"%d\" fill=\"%s\" stroke=\"%s\""
            + " stroke-width=\"%d\"/>", box.x, box.y, box.width, box.height, round, fill, stroke, width);
    }

    private void label(Box box, double right, double down, String more, Palette ink, String words, int fitting) {
        if (!words.isEmpty() && fitting > 0) {
            add("<text x=\"%.1f\" y=\"%.1f\" fill=\"%s\"%s>%s</text>", box.x + right, box.y + down, ink, more,
                PageFrame.escaped(cut(Dot.printable(words), fitting)));
        }
    }

    private static String cut(String words, int fitting) {
        return words.length() <= fitting ? words : words.substring(0, fitting - 1) + "…";
    }

    private void add(String format, Object... values) {
        text.append(String.format(Locale.ROOT, format, values));
    }
}
