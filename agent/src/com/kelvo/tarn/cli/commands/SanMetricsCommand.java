package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Export;
import com.kelvo.tarn.cli.metrics.NetworkMetrics;
import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.Store;
import com.kelvo.tarn.cli.san.StoreException;
import java.io.IOException;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

/** {@code san metrics}: the {@link NetworkMetrics}. */
@Command(name = "metrics", description = "The storage network in numbers, in the text format of Prometheus.",
         footer = "There are some for each host, fabric, switch and port of an array, and none for each path or unit. "
             + "serve --db shows the same over HTTP.")
public final class SanMetricsCommand extends Export {
    @Mixin
    private StoreOption store;

    @Override
    protected void chooseHost() {
        store.refuseHost(tarn());
    }

    @Override
    protected String text() throws IOException {
        try (Store open = Store.open(store.database())) {
            return NetworkMetrics.of(open, NetworkCheck.of(open)).text();
        } catch (StoreException unusable) {
            throw new IOException(unusable.getMessage(), unusable);
        }
    }
}
