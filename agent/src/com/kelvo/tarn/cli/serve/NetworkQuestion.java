package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.answers.Asking;
import com.kelvo.tarn.cli.metrics.Exposition;
import com.kelvo.tarn.cli.metrics.NetworkMetrics;
import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.Store;
import java.util.function.Consumer;
import java.util.function.Supplier;

/** Asks a store, which may be locked or gone: that is told, once for each reason, and is no end. */
final class NetworkQuestion implements Supplier<Metrics> {
    private final String store;
    private final Asking asking;
    private final Consumer<String> complaints;
    private String told = "";

    NetworkQuestion(String store, Asking asking, Consumer<String> complaints) {
        this.store = store;
        this.asking = asking;
        this.complaints = complaints;
    }

    /** Asked by one thread at a time. */
    @Override
    public Metrics get() {
        Exposition exposition;
        String trouble = "";
        try {
            exposition = asking.ask("san", () -> {
                try (Store open = Store.open(store)) {
                    return NetworkMetrics.of(open, NetworkCheck.of(open));
                }
            });
        } catch (IllegalStateException failed) {
            exposition = NetworkMetrics.unknown();
            trouble = "the store: " + failed.getMessage();
        }
        if (!trouble.equals(told) && !trouble.isEmpty()) {
            complaints.accept(trouble);
        }
        told = trouble;
        return new Metrics(exposition);
    }
}
