package com.kelvo.tarn.cli.serve;

import java.util.concurrent.CompletableFuture;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.function.Supplier;

/** The answers of who is asked at most once in a while; whoever comes meanwhile waits for the same. */
final class FreshAnswers<A> {
    private final Supplier<A> asking;
    private final long freshNanos;
    private final ExecutorService asker = Executors.newSingleThreadExecutor(task -> {
        Thread thread = new Thread(task, "rounds");
        thread.setDaemon(true);
        return thread;
    });
    private CompletableFuture<Round<A>> latest;

    private static final class Round<A> {
        private final A answers;
        private final long end = System.nanoTime();

        Round(A answers) {
            this.answers = answers;
        }
    }

    FreshAnswers(Supplier<A> asking, int seconds) {
        this.asking = asking;
        freshNanos = seconds * 1_000_000_000L;
    }

    /** Answers that are fresh still. */
    A get() {
        return round().join().answers;
    }

    private synchronized CompletableFuture<Round<A>> round() {
        if (latest == null || latest.isCompletedExceptionally()
            || latest.isDone() && System.nanoTime() - latest.join().end > freshNanos) {
            latest = CompletableFuture.supplyAsync(() -> new Round<>(asking.get()), asker);
        }
        return latest;
    }
}
