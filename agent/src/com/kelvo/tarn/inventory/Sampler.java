package com.kelvo.tarn.inventory;

/**
 * Reads what disks and ports do, again and again. It keeps the kernel statistics open in between, and sees disks that
 * come and go. Any thread may call any method: readings follow one another.
 */
public final class Sampler implements AutoCloseable {
    static {
        InventoryLibrary.load();
    }

    private final Object reading = new Object();
    private final long handle;
    private boolean isReading;
    private boolean isClosed;

    Sampler() {
        handle = open();
    }

    /**
     * What the counters are now.
     *
     * @return the sample
     * @throws IllegalStateException when the sampler is closed, or is closed before the reading has ended
     * @throws RuntimeException when the kernel statistics cannot be read
     */
    public Sample read() {
        synchronized (reading) {
            begin();
            Sample sample;
            try {
                sample = read(handle);
            } finally {
                end();
            }
            requireOpen();
            return sample;
        }
    }

    /** Gives all back that it holds; a reading that is going on does so as it ends. Closing once more does nothing. */
    @Override
    public synchronized void close() {
        if (!isClosed) {
            isClosed = true;
            if (!isReading) {
                close(handle);
            }
        }
    }

    private synchronized void begin() {
        requireOpen();
        isReading = true;
    }

    private synchronized void end() {
        isReading = false;
        if (isClosed) {
            close(handle);
        }
    }

    private synchronized void requireOpen() {
        if (isClosed) {
            throw new IllegalStateException("the sampler is closed");
        }
    }

    private static native long open();

    private static native Sample read(long handle);

    private static native void close(long handle);
}
