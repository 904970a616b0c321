package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.answers.Asking;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.inventory.Mount;
import java.time.Duration;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.TimeoutException;
import java.util.function.Supplier;

/**
 * Asks in a thread of its own, and gives up what takes too long: such a call keeps that thread for as long as it likes,
 * another thread asks the rest, and the same is not asked again until the call has come back.
 */
final class Limits implements Asking {
    private final LibraryLog log;
    private final int seconds;
    private final Set<String> silent = ConcurrentHashMap.newKeySet();
    private ExecutorService asker;

    Limits(LibraryLog log, int seconds) {
        this.log = log;
        this.seconds = seconds;
    }

    @Override
    public Duration mountLimit() {
        Duration half = Duration.ofMillis(seconds * 500L);
        return half.compareTo(Mount.LIMIT) < 0 ? half : Mount.LIMIT;
    }

    @Override
    public synchronized <T> T ask(String command, Supplier<T> question) {
        if (silent.contains(command)) {
            throw new IllegalStateException("an earlier call has not come back");
        }
        if (asker == null) {
            asker = Executors.newSingleThreadExecutor(task -> {
                Thread thread = new Thread(task, "asker");
                thread.setDaemon(true);
                return thread;
            });
        }
        Future<T> answer = asker.submit(() -> {
            try {
                return question.get();
            } finally {
                log.take(); // what is worth telling is in the answer
            }
        });
        try {
            return answer.get(seconds, TimeUnit.SECONDS);
        } catch (TimeoutException late) {
            silent.add(command);
            asker.execute(() -> silent.remove(command)); // which comes after the call
            asker.shutdown();
            asker = null;
            throw new IllegalStateException("it has not answered within " + seconds + " seconds", late);
        } catch (ExecutionException failed) {
            throw new IllegalStateException(failed.getCause().getMessage(), failed.getCause());
        } catch (InterruptedException interrupted) {
            Thread.currentThread().interrupt();
            throw new IllegalStateException("interrupted", interrupted);
        }
    }
}
