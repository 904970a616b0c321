package com.kelvo.tarn.cli.map;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.util.Locale;

/** The forms that a picture of the storage network may have. */
public enum Picture {
    /** The graph, in Graphviz' language. */
    DOT {
        @Override
        public String of(Topology topology, boolean all) {
            return Dot.of(topology);
        }
    },
    /** The graph as Graphviz draws it, with colours for light and dark. */
    SVG {
        @Override
        public String of(Topology topology, boolean all) throws IOException {
            String svg = Graphviz.svg(Dot.placed(topology));
            int body = svg.indexOf('>') + 1;
            return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + svg.substring(0, body) + "\n<style>\n"
                + Palette.css() + "</style>" + svg.substring(body);
        }
    },
    /** A page that holds the drawing and all that is needed to look at it. */
    HTML {
        @Override
        public String of(Topology topology, boolean all) throws IOException {
            return MapPage.of(topology, Graphviz.svg(Dot.placed(topology)), all);
        }
    },
    /** The graph as Graphviz draws it, in pixels: bytes, no text. */
    PNG,
    /** The graph as Graphviz draws it, to be printed: bytes, no text. */
    PDF;

    /**
     * Draws a storage network.
     *
     * @param topology what is to be seen
     * @param all whether a page lists each path
     * @return the whole picture as text that ends with a newline
     * @throws IOException when it cannot be drawn, saying what would help
     */
    public String of(Topology topology, boolean all) throws IOException {
        throw new UnsupportedOperationException(name() + " is no text");
    }

    /** {@return whether it is a text} */
    public boolean isText() {
        return this != PNG && this != PDF;
    }

    /**
     * Draws a storage network.
     *
     * @param topology what is to be seen
     * @param all whether a page lists each path
     * @return the whole picture as a file has it
     * @throws IOException when it cannot be drawn, saying what would help
     */
    public byte[] bytes(Topology topology, boolean all) throws IOException {
        return isText() ? of(topology, all).getBytes(StandardCharsets.UTF_8)
            : Graphviz.drawn(Dot.placed(topology), name().toLowerCase(Locale.ROOT));
    }
}
