package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Asking;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.map.Picture;
import com.kelvo.tarn.cli.map.Topology;
import com.kelvo.tarn.cli.map.TopologyBuilder;
import com.kelvo.tarn.cli.metrics.HostMetrics;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Terminal;
import com.kelvo.tarn.cli.output.Verdict;
import com.kelvo.tarn.inventory.Sample;
import java.io.IOException;
import java.io.StringWriter;
import java.io.UncheckedIOException;
import java.util.List;
import java.util.Map;
import java.util.function.Supplier;

/** What a host has answered at one time, as each page shows it. */
final class Answers {
    final Metrics metrics;
    /** JSON, with the plugin's line. */
    final Body check;
    /** What the plugin prints. */
    final Body plugin;

    private final Asked asked;
    private final Check found;
    private final String origin;
    private final Asking drawing;
    private Body map;

    /**
     * Asks the host, and waits.
     *
     * @param asking how the host is asked
     * @param sampling reads what its disks and ports do
     * @param drawing how a picture is waited for
     * @param program what draws it, with its version
     */
    Answers(Library library, Asking asking, Supplier<Sample> sampling, Asking drawing, boolean isExample,
            String program) {
        this.drawing = drawing;
        asked = new Asked(library, List.of(), asking);
        CheckRules rules = new CheckRules();
        found = Check.of(asked, null, rules);
        origin = (isExample ? "built-in example"
            : asked.recordedAt == null ? "asked " + rules.now : "recorded " + asked.recordedAt)
            + "; drawn by " + program;

        metrics = new Metrics(HostMetrics.of(library, asked, found, asking, sampling));
        Map<String, Object> document = Json.object("line", Verdict.line(found, asked, rules, isExample));
        document.putAll(Verdict.document(found, asked));
        check = Body.of("application/json", Json.text(document) + "\n");
        StringWriter printed = new StringWriter();
        try (Page page = new Page(printed, Terminal.NONE)) {
            Verdict.show(found, asked, rules, isExample, page);
        }
        plugin = Body.of("text/plain", printed.toString());
    }

    /** The page of the storage network, which is drawn when it is first wanted. */
    synchronized Body map() {
        if (map == null) {
            try {
                asked.requireAnswer("hba");
                map = Body.of("text/html", drawing.ask("map", this::draw));
            } catch (IllegalStateException failed) {
                map = Body.refusal(503, Page.printable(String.valueOf(failed.getMessage())));
            }
        }
        return map;
    }

    private String draw() {
        if (asked.computerSystem == null) {
            throw new IllegalStateException("computer-system has not answered");
        }
        Topology topology =
            TopologyBuilder.topology(asked.computerSystem, asked.fabric, found.findings, null, false);
        topology.origin(found, origin);
        try {
            return Picture.HTML.of(topology, false);
        } catch (IOException failed) {
            throw new UncheckedIOException(failed.getMessage(), failed);
        }
    }
}
