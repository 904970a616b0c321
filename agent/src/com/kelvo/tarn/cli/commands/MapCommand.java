package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.frame.Export;
import com.kelvo.tarn.cli.frame.HbaOptions;
import com.kelvo.tarn.cli.map.Picture;
import com.kelvo.tarn.cli.map.Topology;
import com.kelvo.tarn.cli.map.TopologyBuilder;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import java.io.IOException;
import java.time.Instant;
import java.time.ZoneOffset;
import java.time.format.DateTimeFormatter;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code map}: a {@link Picture} of what {@code fillHbaCache} sees, and of what is wrong with it. */
@Command(name = "map", description = "The storage network as a picture: adapters, ports, fabrics, arrays and their "
         + "logical units.",
         footer = "Red is what the command check finds wrong; it says why. Orange is a logical unit with a warning, "
             + "grey what nothing is reached through; blue and violet are the fabrics. All but DOT are drawn by "
             + "Graphviz (package graphviz).")
public final class MapCommand extends Export {
    private static final Map<String, Picture> ENDINGS = Map.of(
        ".dot", Picture.DOT, ".gv", Picture.DOT, ".svg", Picture.SVG, ".html", Picture.HTML, ".htm", Picture.HTML,
        ".png", Picture.PNG, ".pdf", Picture.PDF);

    private static final DateTimeFormatter TIME =
        DateTimeFormatter.ofPattern("yyyy-MM-dd HH:mm 'UTC'", Locale.ROOT).withZone(ZoneOffset.UTC);

    @Mixin
    private HbaOptions options;

    /** What the shell completes. */
    static final class Formats extends ArrayList<String> {
        private static final long serialVersionUID = 1;

        Formats() {
            super(Arrays.stream(Picture.values()).map(MapCommand::name).collect(Collectors.toList()));
        }
    }

    @Option(names = "--format", paramLabel = "FORMAT", completionCandidates = Formats.class,
            description = "dot, svg, html, or into a file png or pdf. Without it, what --output ends in; without that, "
                + "dot.")
    private String format;

    @Option(names = "--all", description = "Draw each logical unit, remote port and path, however many there are. "
            + "Without it, many that look alike share a box or a line.")
    private boolean all;

    @Option(names = "--baseline", paramLabel = "FILE", description = "An earlier description of the host: paths that "
            + "it has and the host has no more are drawn dashed and red, new ones green.")
    private String baseline;

    @Override
    protected String text() throws IOException {
        Picture picture = picture();
        if (!picture.isText()) {
            throw refusal(name(picture) + " is no text: --output names a file for it");
        }
        return picture.of(topology(), all);
    }

    @Override
    protected byte[] content() throws IOException {
        Picture picture = picture();
        return picture.bytes(topology(), all);
    }

    private Topology topology() {
        HbaOptions names = options.and(tarn().hba());
        SolarisComputerSystem system = library().computerSystem();
        Asked asked = library().log().unheard(() -> new Asked(library(), List.of())); // what it logs is a finding
        Fabric fabric = names.fabric(library(), names.fill(library()), asked.identities());
        boolean isExample = tarn().isBuiltInHost();
        Asked before = baseline == null ? null
            : tarn().at(baseline, spec().commandLine(), () -> new Asked(library(), List.of()));
        Check check = Check.of(asked, null, new CheckRules());
        Topology topology = TopologyBuilder.topology(system, fabric, check.findings,
                                                     before == null ? null : before.fabric, all);
        topology.origin(check, (isExample ? "built-in example"
            : asked.recordedAt == null ? "no recording time told" : "recorded " + time(asked.recordedAt))
            + (before == null ? ""
                : "; compared with " + (before.recordedAt == null ? baseline : time(before.recordedAt)))
            + "; drawn by " + spec().root().version()[0]);
        return topology;
    }

    private static String time(Instant recordedAt) {
        return TIME.format(recordedAt);
    }

    private Picture picture() {
        if (format != null) {
            return Arrays.stream(Picture.values()).filter(picture -> name(picture).equals(format)).findFirst()
                .orElseThrow(() -> refusal("--format: '" + format + "' is none of " + names()));
        }
        if (output() == null) {
            return Picture.DOT;
        }
        String ending = output().substring(Math.max(0, output().lastIndexOf('.'))).toLowerCase(Locale.ROOT);
        Picture picture = ENDINGS.get(ending);
        if (picture == null) {
            throw refusal("--output: '" + output() + "' ends in none of " + names() + "; --format says which it is");
        }
        return picture;
    }

    private static String names() {
        return Arrays.stream(Picture.values()).map(MapCommand::name).collect(Collectors.joining(", "));
    }

    private static String name(Picture picture) {
        return picture.name().toLowerCase(Locale.ROOT);
    }
}
