package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Asking;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.map.Picture;
import com.kelvo.tarn.cli.map.Topology;
import com.kelvo.tarn.cli.map.TopologyBuilder;
import com.kelvo.tarn.cli.metrics.Exposition;
import com.kelvo.tarn.cli.metrics.HostMetrics;
import com.kelvo.tarn.cli.output.Verdict;
import com.kelvo.tarn.inventory.Sample;
import java.io.IOException;
import java.io.UncheckedIOException;
import java.util.List;
import java.util.function.Supplier;

/** What a host has answered. */
final class HostAnswers extends Answers {
    private final Asked asked;
    private final Check found;
    private final String origin;
    private final Asking drawing;

    private HostAnswers(Asked asked, Check found, CheckRules rules, Exposition exposition, Asking drawing,
                        boolean isExample, String program) {
        super(exposition, Verdict.document(found, asked), Verdict.plugin(found, asked, rules, isExample));
        this.asked = asked;
        this.found = found;
        this.drawing = drawing;
        origin = (isExample ? "built-in example"
            : asked.recordedAt == null ? "asked " + rules.now : "recorded " + asked.recordedAt)
            + "; drawn by " + program;
    }

    /**
     * Asks the host, and waits.
     *
     * @param asking how the host is asked
     * @param sampling reads what its disks and ports do
     * @param drawing how a picture is waited for
     * @param program what draws it, with its version
     */
    static HostAnswers of(Library library, Asking asking, Supplier<Sample> sampling, Asking drawing,
                          boolean isExample, String program) {
        Asked asked = new Asked(library, List.of(), asking);
        CheckRules rules = new CheckRules();
        Check found = Check.of(asked, null, rules);
        return new HostAnswers(asked, found, rules, HostMetrics.of(library, asked, found, asking, sampling), drawing,
                               isExample, program);
    }

    @Override
    String draw() {
        asked.requireAnswer("hba");
        return drawing.ask("map", this::picture);
    }

    private String picture() {
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
