package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.inventory.Sample;
import com.kelvo.tarn.inventory.Sampler;
import java.util.function.Supplier;

/** Reads what disks and ports do, with the kernel's statistics kept open in between; asked by one thread at a time. */
final class Sampling implements Supplier<Sample> {
    private final Library library;
    private Sampler sampler;

    Sampling(Library library) {
        this.library = library;
    }

    /** The next reading; after one that failed, by a new sampler. */
    @Override
    public synchronized Sample get() {
        if (sampler == null) {
            sampler = library.sampler();
        }
        try {
            return sampler.read();
        } catch (RuntimeException failed) {
            sampler.close();
            sampler = null;
            throw failed;
        }
    }
}
