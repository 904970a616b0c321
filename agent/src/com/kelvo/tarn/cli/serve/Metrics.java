package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.metrics.Exposition;

/** Metrics in the formats that are asked for. */
final class Metrics {
    private final Body text;
    private final Body openMetrics;

    Metrics(Exposition exposition) {
        text = Body.of("text/plain; version=0.0.4", exposition::text);
        openMetrics = Body.of("application/openmetrics-text; version=1.0.0", exposition::openMetrics);
    }

    Body as(Accepted accept) {
        return accept.prefers("application/openmetrics-text", "text/plain") ? openMetrics : text;
    }
}
