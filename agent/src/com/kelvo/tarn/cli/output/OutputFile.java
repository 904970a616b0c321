package com.kelvo.tarn.cli.output;

import java.io.IOException;
import java.io.OutputStream;
import java.nio.channels.Channels;
import java.nio.charset.StandardCharsets;
import java.nio.file.AccessDeniedException;
import java.nio.file.FileSystemException;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.nio.file.StandardOpenOption;
import java.nio.file.attribute.PosixFilePermission;
import java.nio.file.attribute.PosixFilePermissions;
import java.util.Set;

/** A file that whoever reads it sees whole: as it was, or as it is now. */
public final class OutputFile {
    private OutputFile() {
    }

    /**
     * Replaces the file's content in one step; it keeps its rights. What is no plain file, such as a device or a pipe,
     * is written to.
     *
     * @param name the file's path
     * @param content what it is to hold
     * @throws IOException when it cannot be; the message names the file, which is then as it was
     */
    public static void write(String name, String content) throws IOException {
        byte[] bytes = content.getBytes(StandardCharsets.UTF_8);
        try {
            Path named = Path.of(name);
            if (Files.exists(named) && !Files.isRegularFile(named)) {
                Files.write(named, bytes, StandardOpenOption.WRITE);
                return;
            }
            boolean isNew = !Files.exists(named);
            Path file = isNew ? named : named.toRealPath(); // a link stays one
            Set<PosixFilePermission> rights =
                isNew ? PosixFilePermissions.fromString("rw-rw-rw-") : Files.getPosixFilePermissions(file);
            // In the same directory, where it can take the name over.
            Path whole = file.resolveSibling("." + file.getFileName() + "." + ProcessHandle.current().pid() + ".tmp");
            try {
                try (OutputStream out = Channels.newOutputStream(Files.newByteChannel(
                         whole, Set.of(StandardOpenOption.CREATE_NEW, StandardOpenOption.WRITE),
                         PosixFilePermissions.asFileAttribute(rights)))) {
                    out.write(bytes);
                }
                if (!isNew) {
                    Files.setPosixFilePermissions(whole, rights); // also what this process keeps from new files
                }
                Files.move(whole, file, StandardCopyOption.ATOMIC_MOVE);
            } finally {
                Files.deleteIfExists(whole);
            }
        } catch (IOException | RuntimeException failed) {
            throw new IOException("'" + name + "' cannot be written: " + reason(failed), failed);
        }
    }

    private static String reason(Exception failed) {
        if (failed instanceof NoSuchFileException) {
            return "there is no such directory";
        } else if (failed instanceof AccessDeniedException) {
            return "permission denied";
        } else if (failed instanceof FileSystemException && ((FileSystemException) failed).getReason() != null) {
            return ((FileSystemException) failed).getReason();
        }
        return String.valueOf(failed.getMessage());
    }
}
