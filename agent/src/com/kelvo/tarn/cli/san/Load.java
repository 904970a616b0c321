package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.Reasons;
import java.io.IOException;
import java.nio.file.Path;
import java.time.Duration;
import java.time.Instant;
import java.util.ArrayList;
import java.util.List;
import java.util.Objects;
import java.util.concurrent.ArrayBlockingQueue;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.atomic.AtomicLong;
import java.util.concurrent.atomic.AtomicReference;

/** Puts what descriptions tell into a store, on all processors. */
public final class Load {
    /** Is told how it goes, by one thread at a time. */
    public interface Observer {
        /** One file more has been dealt with. */
        void advanced();

        /**
         * A file or a folder cannot be used.
         *
         * @param refusal which, and why
         */
        void refused(Refusal refusal);
    }

    /** A file or a folder that could not be used. */
    public static final class Refusal {
        /** Its path, as it was named or found. */
        public final String file;
        /** Why not. */
        public final String reason;

        private Refusal(String file, String reason) {
            this.file = file;
            this.reason = reason;
        }
    }

    /** A file on its way into the store. Each step tells whether there is another. */
    private static final class Recording {
        private final Path path;
        /** Null once the host has been asked. */
        private byte[] text;
        private String digest;
        private Instant recordedAt;
        private HostFacts facts;

        private Recording(Path path) {
            this.path = path;
        }

        private boolean readText() throws IOException {
            DescriptionText description = new DescriptionText(path);
            text = description.text;
            digest = description.digest();
            recordedAt = description.writtenAt;
            return true;
        }

        /** Whether the host has to be asked, which takes much longer than to find that out. */
        private boolean isNews(HostWriter writer) {
            if (writer.has(digest)) {
                return false;
            }
            if (!writer.prunes()) {
                return true;
            }
            Origin origin = new Origin(text);
            return origin.host == null
                || !writer.hasEnoughLater(origin.host, Objects.requireNonNullElse(origin.recordedAt, recordedAt));
        }

        private boolean ask(HostReader reader) {
            facts = reader.read(text, path.toString());
            if (facts.host.isBlank()) {
                throw new IllegalArgumentException("it does not tell the host's name");
            }
            recordedAt = Objects.requireNonNullElse(facts.recordedAt, recordedAt);
            if (recordedAt.isAfter(Instant.now().plus(MOST_AHEAD))) { // nothing would be later, until that time
                throw new IllegalArgumentException("it was recorded in the future, at " + recordedAt);
            }
            text = null;
            return true;
        }

        /** Whether that changed anything. */
        private boolean write(HostWriter writer) {
            return writer.write(facts, recordedAt, digest);
        }
    }

    @FunctionalInterface
    private interface Step {
        boolean take(Recording recording) throws IOException;
    }

    @FunctionalInterface
    private interface WritingStep {
        boolean take(Recording recording, HostWriter writer);
    }

    /** How many files a thread takes at once, and from what size of their texts on it takes no more. */
    private static final int MOST_TOGETHER = 16;
    private static final long ENOUGH_TEXT = 1 << 20;
    /** How far a host's clock may be ahead of this machine's. */
    private static final Duration MOST_AHEAD = Duration.ofDays(1);

    private final Descriptions descriptions;
    private final Observer observer;
    private final AtomicLong loaded = new AtomicLong();
    private final AtomicLong unchanged = new AtomicLong();
    private final List<Refusal> refused = new ArrayList<>();
    private final BlockingQueue<HostWriter> writers;
    /** What ends it all, once it is not null. */
    private final AtomicReference<Throwable> failure = new AtomicReference<>();

    private Load(List<Path> named, Observer observer, int writers) {
        descriptions = new Descriptions(named, (path, reason) -> refuse(path.toString(), reason));
        this.observer = observer;
        this.writers = new ArrayBlockingQueue<>(writers);
    }

    /**
     * {@return how many files there are to be loaded}
     *
     * @param named files, and folders of files
     */
    public static long count(List<Path> named) {
        Descriptions descriptions = new Descriptions(named, (path, reason) -> { });
        long count = 0;
        while (descriptions.next() != null) {
            count++;
        }
        return count;
    }

    /**
     * {@return what became of the files}
     *
     * @param database the store's file or URL; it is made where there is none
     * @param named files, and folders of files
     * @param keep how many recordings of each host are kept; 0 for all
     * @param observer is told how it goes
     */
    public static Load into(String database, List<Path> named, int keep, Observer observer) {
        int processors = Runtime.getRuntime().availableProcessors();
        try (Store store = Store.openToWrite(database)) {
            Load load = new Load(named, observer, store.writers(processors));
            try {
                while (load.writers.remainingCapacity() > 0) {
                    load.writers.add(new HostWriter(store.again(), keep));
                }
                load.run(processors);
                load.writers.element().prune();
            } finally {
                load.writers.forEach(HostWriter::close);
            }
            return load;
        }
    }

    /** {@return how many recordings were added} */
    public long loaded() {
        return loaded.get();
    }

    /** {@return how many recordings were there, or are older than all that are kept} */
    public long unchanged() {
        return unchanged.get();
    }

    /** {@return what could not be used} */
    public List<Refusal> refused() {
        return refused;
    }

    private void run(int processors) {
        List<Thread> threads = new ArrayList<>();
        for (int i = 0; i < processors; i++) {
            boolean isFirst = i == 0;
            threads.add(new Thread(() -> work(isFirst), "load " + i));
        }
        threads.forEach(Thread::start);
        for (Thread thread : threads) {
            try {
                thread.join();
            } catch (InterruptedException hurried) {
                failure.compareAndSet(null, hurried);
            }
        }
        Throwable failed = failure.get();
        if (failed instanceof RuntimeException) {
            throw (RuntimeException) failed;
        } else if (failed != null) {
            throw new IllegalStateException(failed);
        }
    }

    /** One thread's share. The first has the libraries of the program itself, and a single file needs no other. */
    private void work(boolean isFirst) {
        try {
            HostReader reader = null;
            int most = 1; // at first, so that a few files are shared out among all threads
            for (List<Recording> taken = take(most); !taken.isEmpty(); taken = take(most)) {
                if (reader == null) {
                    reader = isFirst ? new LibraryReader() : anotherReader();
                }
                load(taken, reader);
                most = Math.min(MOST_TOGETHER, 2 * most);
            }
        } catch (Throwable failed) {
            failure.compareAndSet(null, failed);
        }
    }

    /** The next files that can be read; none when there are no more, or it is to end. */
    private List<Recording> take(int most) {
        List<Recording> taken = new ArrayList<>();
        long size = 0;
        while (taken.size() < most && size < ENOUGH_TEXT && failure.get() == null) {
            Path path = descriptions.next();
            if (path == null) {
                break;
            }
            Recording recording = new Recording(path);
            if (goesOn(recording, Recording::readText)) {
                taken.add(recording);
                size += recording.text.length;
            }
        }
        return taken;
    }

    private static HostReader anotherReader() {
        try {
            return Isolation.reader(LibraryReader.class);
        } catch (IOException | LinkageError failed) {
            throw new IllegalStateException("the libraries cannot be copied to the temporary folder, or not run there: "
                                            + failed.getMessage(), failed);
        }
    }

    /** Several go through each step, which is done faster where what it needs is still near the processor. */
    private void load(List<Recording> recordings, HostReader reader) throws InterruptedException {
        write(recordings, (each, writer) -> each.isNews(writer) || leave(unchanged));
        recordings.removeIf(each -> !goesOn(each, asked -> asked.ask(reader)));
        write(recordings, (each, writer) -> leave(each.write(writer) ? loaded : unchanged));
    }

    private static boolean leave(AtomicLong counted) {
        counted.incrementAndGet();
        return false;
    }

    /** Takes them through a step that needs a writer, which no other thread has meanwhile. */
    private void write(List<Recording> recordings, WritingStep step) throws InterruptedException {
        if (recordings.isEmpty()) {
            return;
        }
        HostWriter writer = writers.take();
        try {
            recordings.removeIf(each -> failure.get() != null || !goesOn(each, taken -> step.take(taken, writer)));
        } finally {
            writers.add(writer);
        }
    }

    /** Takes one through a step: whether there are others for it. */
    private boolean goesOn(Recording recording, Step step) {
        boolean goesOn = false;
        try {
            goesOn = step.take(recording);
        } catch (IOException failed) {
            refuse(recording.path.toString(), Reasons.of(failed));
        } catch (StoreException ended) {
            failure.compareAndSet(null, ended); // before another thread takes the writer, to wait as long for the same
            throw ended;
        } catch (RuntimeException unusable) { // whatever a host makes of those who ask it, the others can be asked
            refuse(recording.path.toString(), Objects.requireNonNullElse(unusable.getMessage(), unusable.toString()));
        } catch (OutOfMemoryError tooLarge) {
            refuse(recording.path.toString(), "it is too large for the memory of this virtual machine");
        }
        if (!goesOn) {
            synchronized (this) {
                observer.advanced();
            }
        }
        return goesOn;
    }

    private synchronized void refuse(String file, String reason) {
        Refusal refusal = new Refusal(file, reason.startsWith(file + ": ") ? reason.substring(file.length() + 2)
                                      : reason);
        refused.add(refusal);
        observer.refused(refusal);
    }
}
