package com.kelvo.tarn.cli.san;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.attribute.BasicFileAttributes;
import java.security.MessageDigest;
import java.security.NoSuchAlgorithmException;
import java.time.Instant;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.concurrent.ArrayBlockingQueue;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.atomic.AtomicLong;
import java.util.function.BiConsumer;

/** Puts what descriptions tell into a store. */
public final class Load {
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

    private final Store store;
    private final int keep;
    private final BiConsumer<String, String> told;
    private final AtomicLong loaded = new AtomicLong();
    private final AtomicLong unchanged = new AtomicLong();
    private final List<Refusal> refused = new ArrayList<>();
    private BlockingQueue<HostWriter> writers;
    private volatile RuntimeException failure;

    private Load(Store store, int keep, BiConsumer<String, String> told) {
        this.store = store;
        this.keep = keep;
        this.told = told;
    }

    /**
     * {@return what became of the files}
     *
     * @param database the store's file or URL; it is made where there is none
     * @param named files, and folders of files
     * @param keep how many recordings of each host are kept; 0 for all
     * @param told is told of each file that cannot be used, with the reason, as it happens
     */
    public static Load into(String database, List<Path> named, int keep, BiConsumer<String, String> told) {
        try (Store store = Store.openToWrite(database)) {
            Load load = new Load(store, keep, told);
            load.run(named);
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

    private void run(List<Path> named) {
        Descriptions descriptions = new Descriptions(named, (path, reason) -> refuse(path.toString(), reason));
        writers = new ArrayBlockingQueue<>(1);
        writers.add(new HostWriter(store.again(), keep));
        try (Store known = store.again()) {
            HostReader reader = new LibraryReader();
            for (Path path = descriptions.next(); path != null && failure == null; path = descriptions.next()) {
                load(path, reader, known);
            }
        } finally {
            writers.forEach(HostWriter::close);
        }
    }

    private void load(Path path, HostReader reader, Store known) {
        try {
            BasicFileAttributes before = Files.readAttributes(path, BasicFileAttributes.class);
            if (!before.isRegularFile()) {
                throw new IllegalArgumentException("it is no regular file");
            }
            String digest = digest(Files.readAllBytes(path));
            if (!known.query("SELECT id FROM snapshot WHERE digest = ?", row -> row.getLong(1), digest).isEmpty()) {
                unchanged.incrementAndGet();
                return;
            }
            HostFacts facts = reader.read(path.toString());
            BasicFileAttributes after = Files.readAttributes(path, BasicFileAttributes.class);
            if (before.size() != after.size() || !before.lastModifiedTime().equals(after.lastModifiedTime())) {
                throw new IllegalArgumentException("it changed while it was read");
            }
            if (facts.host.isBlank()) {
                throw new IllegalArgumentException("it does not tell the host's name");
            }
            Instant recordedAt = facts.recordedAt != null ? facts.recordedAt : before.lastModifiedTime().toInstant();
            HostWriter writer = writers.take();
            try {
                (writer.write(facts, recordedAt, digest) ? loaded : unchanged).incrementAndGet();
            } finally {
                writers.add(writer);
            }
        } catch (IOException failed) {
            refuse(path.toString(), Reasons.of(failed));
        } catch (IllegalArgumentException | IllegalStateException unusable) {
            refuse(path.toString(), unusable.getMessage());
        } catch (InterruptedException hurried) {
            Thread.currentThread().interrupt();
        }
    }

    private static String digest(byte[] text) {
        try {
            StringBuilder digits = new StringBuilder();
            for (byte each : MessageDigest.getInstance("SHA-256").digest(text)) {
                digits.append(String.format(Locale.ROOT, "%02x", each));
            }
            return digits.toString();
        } catch (NoSuchAlgorithmException impossible) {
            throw new IllegalStateException(impossible);
        }
    }

    private synchronized void refuse(String file, String reason) {
        String plain = reason.startsWith(file + ": ") ? reason.substring(file.length() + 2) : reason;
        refused.add(new Refusal(file, plain));
        told.accept(file, plain);
    }
}
