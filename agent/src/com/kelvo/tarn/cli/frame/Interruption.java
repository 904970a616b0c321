package com.kelvo.tarn.cli.frame;

import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;

/** Lets a command that would go on for ever end with exit status 0 when SIGINT or SIGTERM asks for that. */
public final class Interruption implements AutoCloseable {
    /** A call to the host may never return. */
    private static final long PATIENCE = 1000;

    private final CountDownLatch asked = new CountDownLatch(1);
    private final CountDownLatch ended = new CountDownLatch(1);
    private final Thread hook = new Thread(this::end);

    /** From now on the signals are heeded. */
    public Interruption() {
        Runtime.getRuntime().addShutdownHook(hook);
    }

    private void end() {
        asked.countDown();
        try {
            ended.await(PATIENCE, TimeUnit.MILLISECONDS);
        } catch (InterruptedException hurried) {
            // it ends as it is
        }
        Runtime.getRuntime().halt(0);
    }

    /**
     * Waits until a time, or until the end is asked for.
     *
     * @param time as {@link System#nanoTime} tells it
     * @return whether the end was asked for
     */
    public boolean comesBefore(long time) {
        try {
            return asked.await(time - System.nanoTime(), TimeUnit.NANOSECONDS);
        } catch (InterruptedException hurried) {
            return true;
        }
    }

    /** The command has come to its end: what it had to write is written. */
    @Override
    public void close() {
        ended.countDown();
        try {
            Runtime.getRuntime().removeShutdownHook(hook);
        } catch (IllegalStateException late) {
            // the hook runs already
        }
    }
}
