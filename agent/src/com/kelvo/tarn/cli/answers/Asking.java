package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.inventory.Mount;
import java.time.Duration;
import java.util.function.Supplier;

/** How questions are put to the library, one after the other. */
public interface Asking {
    /** In the caller's own thread, for as long as it takes. */
    Asking AT_ONCE = new Asking() {
        @Override
        public <T> T ask(String command, Supplier<T> question) {
            return question.get();
        }
    };

    /**
     * {@return the answer} What the question raises is raised here.
     *
     * @param <T> the answer
     * @param command the one that asks the same
     * @param question what is asked; it may still be asking when this has given it up, and has to leave alone what the
     *     caller has
     * @throws IllegalStateException when the answer is not waited for any longer
     */
    <T> T ask(String command, Supplier<T> question);

    /** {@return how long a mount that may hang has to tell its sizes: less than the question that it is part of has} */
    default Duration mountLimit() {
        return Mount.LIMIT;
    }
}
