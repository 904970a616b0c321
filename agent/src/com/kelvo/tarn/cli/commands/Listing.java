package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import java.util.List;
import java.util.Optional;

/** A command that shows all things of a kind, or the one that its argument names. */
abstract class Listing<K, E> extends TableInquiry<List<E>> {
    private final String noun;

    /** The noun is singular, and takes an s. */
    Listing(String noun) {
        this.noun = noun;
    }

    /** {@return what the argument names; null for all} */
    protected abstract K wanted();

    /** {@return all there are} */
    protected abstract List<E> all();

    /**
     * {@return the one of that name; null when there is none}
     *
     * @param name what the argument names
     */
    protected abstract E one(K name);

    @Override
    protected final List<E> ask() {
        return wanted() == null ? all() : Optional.ofNullable(one(wanted())).map(List::of).orElse(List.of());
    }

    @Override
    protected final Object result(List<E> answer) {
        return wanted() == null ? answer : answer.isEmpty() ? null : answer.get(0);
    }

    @Override
    protected final String missing(List<E> answer) {
        return wanted() != null && answer.isEmpty() ? "no " + noun + " " + wanted() : null;
    }

    /** Names what was asked for, where the library does not. */
    @Override
    protected final String complaint(String message) {
        return wanted() == null || message.contains(wanted().toString()) ? message
            : noun + " " + wanted() + ": " + message;
    }

    @Override
    protected final void show(List<E> answer, Page out) {
        if (answer.isEmpty()) {
            out.println("no " + noun + "s");
        } else {
            super.show(answer, out);
        }
    }
}
