package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Asking;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import com.kelvo.tarn.cli.frame.Export;
import com.kelvo.tarn.cli.metrics.HostMetrics;
import java.util.List;
import picocli.CommandLine.Command;

/** {@code metrics}: the {@link HostMetrics}. */
@Command(name = "metrics", description = "The host's states and counters, in the text format of Prometheus.",
         footer = "What the library does not answer is left out, and tarn_section_up is 0 for it; the exit status is 0 "
             + "all the same.")
public final class MetricsCommand extends Export {
    @Override
    protected String text() {
        Asked asked = new Asked(library(), List.of());
        return (tarn().isBuiltInHost() ? "# The built-in example answers, not a host.\n" : "")
            + HostMetrics.of(library(), asked, Check.of(asked, null, new CheckRules()), Asking.AT_ONCE,
                             library()::sample).text();
    }
}
