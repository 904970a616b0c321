package com.kelvo.tarn.cli.serve;

import java.util.concurrent.CompletableFuture;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.function.Supplier;

/** The answers of a host that is asked at most once in a while; whoever comes meanwhile waits for the same answer. */
final class FreshAnswers {
    private final Supplier<Answers> asking;
    private final long freshNanos;
    private final ExecutorService asker = Executors.newSingleThreadExecutor(task -> {
        Thread thread = new Thread(task, "rounds");
        thread.setDaemon(true);
        return thread;
    });
    private CompletableFuture<Round> latest;

    private static final class Round {
        private final Answers answers;
        private final long end = System.nanoTime();

        Round(Answers answers) {
            this.answers = answers;
        }
    }

    FreshAnswers(Supplier<Answers> asking, int seconds) {
        this.asking = asking;
        freshNanos = seconds * 1_000_000_000L;
    }

    /** Answers that are fresh still. */
    Answers get() {
        return round().join().answers;
    }

    private synchronized CompletableFuture<Round> round() {
        if (latest == null || latest.isCompletedExceptionally()
            || latest.isDone() && System.nanoTime() - latest.join().end > freshNanos) {
            latest = CompletableFuture.supplyAsync(() -> new Round(asking.get()), asker);
        }
        return latest;
    }
}
