package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.output.Reasons;
import java.io.IOException;
import java.nio.file.DirectoryIteratorException;
import java.nio.file.DirectoryStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayDeque;
import java.util.ArrayList;
import java.util.Collections;
import java.util.Deque;
import java.util.Iterator;
import java.util.List;
import java.util.function.BiConsumer;

/**
 * The files that are named, and those in the folders that are named and in theirs, in the order of their names. In a
 * folder only what is called .json or .json.gz counts, and nothing that is hidden.
 */
final class Descriptions {
    /** A folder of which not all has been handed out. */
    private static final class Folder {
        private final Path path;
        private final Path real;
        private final Iterator<Path> entries;
        private boolean isEmpty = true;

        private Folder(Path path) throws IOException {
            this.path = path;
            real = path.toRealPath();
            List<Path> found = new ArrayList<>();
            try (DirectoryStream<Path> stream = Files.newDirectoryStream(path)) {
                stream.forEach(found::add);
            } catch (DirectoryIteratorException failed) {
                throw failed.getCause();
            }
            Collections.sort(found);
            entries = found.iterator();
        }
    }

    private final Iterator<Path> named;
    private final Deque<Folder> open = new ArrayDeque<>();
    private final BiConsumer<Path, String> refusal;

    /** What cannot be read is told with its reason. */
    Descriptions(List<Path> named, BiConsumer<Path, String> refusal) {
        this.named = named.iterator();
        this.refusal = refusal;
    }

    /** The next file; null when there is none. */
    synchronized Path next() {
        while (true) {
            if (open.isEmpty()) {
                if (!named.hasNext()) {
                    return null;
                }
                Path given = named.next();
                if (!Files.isDirectory(given)) {
                    return given;
                }
                enter(given);
                continue;
            }
            Folder folder = open.peek();
            if (!folder.entries.hasNext()) {
                open.pop();
                leave(folder);
                continue;
            }
            Path entry = folder.entries.next();
            String name = entry.getFileName().toString();
            if (name.startsWith(".")) {
                continue;
            }
            if (Files.isDirectory(entry)) {
                enter(entry);
            } else if (name.endsWith(".json") || name.endsWith(".json.gz")) {
                folder.isEmpty = false;
                return entry;
            }
        }
    }

    private void enter(Path path) {
        try {
            Folder folder = new Folder(path);
            // A link may lead to a folder above.
            if (open.stream().noneMatch(above -> above.real.equals(folder.real))) {
                open.push(folder);
            }
        } catch (IOException failed) {
            refusal.accept(path, Reasons.of(failed));
        }
    }

    /** Of the folders that are named, one without any description is a mistake. */
    private void leave(Folder folder) {
        if (!open.isEmpty()) {
            open.peek().isEmpty &= folder.isEmpty;
        } else if (folder.isEmpty) {
            refusal.accept(folder.path, "there is no description (.json or .json.gz) in this folder");
        }
    }
}
