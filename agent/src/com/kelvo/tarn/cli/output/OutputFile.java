package com.kelvo.tarn.cli.output;

import java.io.BufferedOutputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.nio.channels.Channels;
import java.nio.channels.FileChannel;
import java.nio.file.AccessDeniedException;
import java.nio.file.FileAlreadyExistsException;
import java.nio.file.FileSystemException;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.nio.file.StandardOpenOption;
import java.nio.file.attribute.PosixFileAttributeView;
import java.nio.file.attribute.PosixFileAttributes;
import java.nio.file.attribute.PosixFilePermissions;
import java.util.Set;

/** A file that whoever reads it sees whole: as it was, or as it is now. */
public final class OutputFile {
    private static final int MOST_LINKS = 40;
    private static final int BUFFER = 1 << 16;
    private static final String OWNERS = "rw-------";

    private OutputFile() {
    }

    /** What writes the content of a file. */
    public interface Content {
        /**
         * Writes all of it.
         *
         * @param out the file; it stays open
         * @throws IOException when it cannot be
         */
        void writeTo(OutputStream out) throws IOException;
    }

    /**
     * Replaces the file's content in one step; it keeps its rights and, where this process may set them, its owner and
     * group. What is no plain file, such as a device or a pipe, is written to. A link that leads nowhere makes what it
     * leads to.
     *
     * @param name the file's path
     * @param bytes what it is to hold
     * @throws IOException when it cannot be; the message names the file, which is then as it was
     */
    public static void write(String name, byte[] bytes) throws IOException {
        write(name, out -> out.write(bytes));
    }

    /**
     * Replaces the file's content in one step, as {@link #write(String, byte[])} does.
     *
     * @param name the file's path
     * @param content what it is to hold
     * @throws IOException when it cannot be; the message names the file, which is then as it was
     */
    public static void write(String name, Content content) throws IOException {
        try {
            Path named = Path.of(name);
            if (Files.exists(named) && !Files.isRegularFile(named)) {
                try (OutputStream out = Files.newOutputStream(named, StandardOpenOption.WRITE)) {
                    content.writeTo(out);
                }
                return;
            }
            boolean isNew = !Files.exists(named);
            Path file = isNew ? end(named) : named.toRealPath(); // a link stays one
            PosixFileAttributes before = isNew ? null : Files.readAttributes(file, PosixFileAttributes.class);
            // In the same directory, where it can take the name over. To others it is as open as the file will be.
            Path whole = unfinished(file);
            try {
                writeWhole(whole, isNew ? "rw-rw-rw-" : OWNERS, content, before);
                Files.move(whole, file, StandardCopyOption.ATOMIC_MOVE);
            } finally {
                Files.deleteIfExists(whole);
            }
        } catch (IOException | RuntimeException failed) {
            throw new IOException("'" + name + "' cannot be written: " + reason(failed), failed);
        }
    }

    /**
     * Makes a new file, which only its owner may read, in one step.
     *
     * @param name the file's path
     * @param content what it is to hold
     * @throws IOException when it cannot be, or when there is anything of that name; the message names the file
     */
    public static void make(String name, Content content) throws IOException {
        try {
            Path file = Path.of(name);
            Path whole = unfinished(file);
            try {
                writeWhole(whole, OWNERS, content, null);
                Files.createLink(file, whole); // a name that is taken stays whose it is
            } finally {
                Files.deleteIfExists(whole);
            }
        } catch (IOException | RuntimeException failed) {
            throw new IOException("'" + name + "' cannot be written: " + reason(failed), failed);
        }
    }

    private static Path unfinished(Path file) {
        return file.resolveSibling(".tarn." + ProcessHandle.current().pid() + ".tmp");
    }

    private static void writeWhole(Path file, String rights, Content content, PosixFileAttributes like)
            throws IOException {
        try (FileChannel channel = FileChannel.open(
                 file, Set.of(StandardOpenOption.CREATE_NEW, StandardOpenOption.WRITE),
                 PosixFilePermissions.asFileAttribute(PosixFilePermissions.fromString(rights)))) {
            OutputStream out = new BufferedOutputStream(Channels.newOutputStream(channel), BUFFER);
            content.writeTo(out);
            out.flush();
            if (like != null) {
                makeLike(like, file);
            }
            channel.force(true);
        }
    }

    /** Where a link leads that leads to nothing yet; the file itself when it is no link. */
    private static Path end(Path named) throws IOException {
        Path end = named;
        for (int links = 0; Files.isSymbolicLink(end); links++) {
            if (links == MOST_LINKS) {
                throw new FileSystemException(named.toString(), null, "too many levels of symbolic links");
            }
            end = end.resolveSibling(Files.readSymbolicLink(end));
        }
        return end;
    }

    /** Only the superuser may give a file away; whoever else may replace it owns it then. */
    private static void makeLike(PosixFileAttributes before, Path file) throws IOException {
        PosixFileAttributeView view = Files.getFileAttributeView(file, PosixFileAttributeView.class);
        try {
            view.setGroup(before.group());
            view.setOwner(before.owner());
        } catch (FileSystemException notAllowed) {
            // it is written all the same
        }
        view.setPermissions(before.permissions()); // also what this process keeps from new files
    }

    private static String reason(Exception failed) {
        if (failed instanceof NoSuchFileException) {
            return "there is no such directory";
        } else if (failed instanceof AccessDeniedException) {
            return "permission denied";
        } else if (failed instanceof FileAlreadyExistsException) {
            return "there is a file of that name";
        } else if (failed instanceof FileSystemException && ((FileSystemException) failed).getReason() != null) {
            return ((FileSystemException) failed).getReason();
        }
        return String.valueOf(failed.getMessage());
    }
}
