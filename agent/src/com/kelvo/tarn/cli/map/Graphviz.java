package com.kelvo.tarn.cli.map;

import java.io.IOException;
import java.io.OutputStream;
import java.nio.charset.StandardCharsets;

/** Has Graphviz draw. */
final class Graphviz {
    private static final String PROGRAM = "dot";

    private Graphviz() {
    }

    /**
     * The picture as an element "svg" and nothing around it. Everything has its place already.
     *
     * @throws IOException when it cannot be drawn, saying what would help
     */
    static String svg(String dot) throws IOException {
        String svg = new String(drawn(dot, "svg"), StandardCharsets.UTF_8);
        return svg.substring(Math.max(0, svg.indexOf("<svg")));
    }

    /**
     * The picture in a form that Graphviz knows, such as "png".
     *
     * @throws IOException when it cannot be drawn, saying what would help
     */
    static byte[] drawn(String dot, String form) throws IOException {
        Process process;
        try {
            process = new ProcessBuilder(PROGRAM, "-Kneato", "-n2", "-q", "-T" + form).start();
        } catch (IOException absent) {
            throw new IOException("the picture is drawn by Graphviz's program '" + PROGRAM
                                  + "', which is not here; the package graphviz brings it", absent);
        }
        // It reads all before it writes anything, and told to be quiet it complains of nothing but what ends it.
        try (OutputStream in = process.getOutputStream()) {
            in.write(dot.getBytes(StandardCharsets.UTF_8));
        } catch (IOException ended) {
            // it says why below
        }
        byte[] picture = process.getInputStream().readAllBytes();
        String complaint = new String(process.getErrorStream().readAllBytes(), StandardCharsets.UTF_8).strip();
        try {
            if (process.waitFor() != 0 || picture.length == 0) {
                throw new IOException("Graphviz's program '" + PROGRAM + "' failed: "
                                      + (complaint.isEmpty() ? "it said nothing" : complaint));
            }
        } catch (InterruptedException interrupted) {
            Thread.currentThread().interrupt();
            throw new IOException("interrupted", interrupted);
        }
        return picture;
    }
}
