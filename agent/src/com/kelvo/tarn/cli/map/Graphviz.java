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
     * The picture as an element "svg" and nothing around it.
     *
     * @throws IOException when it cannot be drawn, saying what would help
     */
    static String svg(String dot) throws IOException {
        Process process;
        try {
            process = new ProcessBuilder(PROGRAM, "-q", "-Tsvg").start();
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
        String svg = new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        String complaint = new String(process.getErrorStream().readAllBytes(), StandardCharsets.UTF_8).strip();
        try {
            if (process.waitFor() != 0 || !svg.contains("<svg")) {
                throw new IOException("Graphviz's program '" + PROGRAM + "' failed: "
                                      + (complaint.isEmpty() ? "it said nothing" : complaint));
            }
        } catch (InterruptedException interrupted) {
            Thread.currentThread().interrupt();
            throw new IOException("interrupted", interrupted);
        }
        return svg.substring(svg.indexOf("<svg"));
    }
}
