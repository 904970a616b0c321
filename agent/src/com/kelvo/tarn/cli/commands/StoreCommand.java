package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.san.StoreException;
import java.io.IOException;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.ParameterException;

/** A command that is about the store of the storage network, and no host. */
abstract class StoreCommand extends TableCommand {
    @Mixin
    private StoreOption store;

    @Override
    protected final void chooseHost() {
        store.refuseHost(tarn());
    }

    /** What names the store. */
    final String database() {
        return store.database();
    }

    @Override
    public final Answer ask() {
        try {
            return askStore();
        } catch (StoreException unusable) {
            // Rightly used: it is the store's fault.
            throw new ParameterException(spec().commandLine(), unusable.getMessage(), new IOException(unusable));
        }
    }

    /** What the store answers. */
    abstract Answer askStore();
}
