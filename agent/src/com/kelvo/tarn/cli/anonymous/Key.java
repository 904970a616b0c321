package com.kelvo.tarn.cli.anonymous;

import java.io.IOException;
import java.io.InputStream;
import java.nio.file.AccessDeniedException;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.nio.file.attribute.PosixFileAttributeView;
import java.nio.file.attribute.PosixFilePermission;
import java.util.EnumSet;
import java.util.Set;

/** What pseudonyms follow from. */
public final class Key {
    private static final int LEAST = 32;
    private static final int MOST = 4096;
    private static final int LEAST_DIFFERENT = 8;
    private static final Set<PosixFilePermission> OF_OTHERS =
        EnumSet.of(PosixFilePermission.GROUP_READ, PosixFilePermission.GROUP_WRITE, PosixFilePermission.OTHERS_READ,
                   PosixFilePermission.OTHERS_WRITE);

    private final Permutation permutation;
    private final Words words;

    private Key(byte[] bytes) {
        permutation = new Permutation(bytes);
        words = new Words(permutation);
    }

    /**
     * {@return the key that a file holds}
     *
     * @param file its path: of 32 bytes or more, which are random, and which others may neither read nor write
     * @throws IOException when it cannot be used as a key; the message names it and says why
     */
    public static Key read(String file) throws IOException {
        try {
            Path path = Path.of(file);
            PosixFileAttributeView rights = Files.getFileAttributeView(path, PosixFileAttributeView.class);
            if (Files.isDirectory(path)) {
                throw new IOException("it is a directory");
            }
            Set<PosixFilePermission> granted = EnumSet.copyOf(OF_OTHERS);
            granted.retainAll(rights == null ? Set.of() : rights.readAttributes().permissions());
            if (!granted.isEmpty()) {
                throw new IOException("others may read or write it (chmod 600 makes it the owner's)");
            }
            byte[] bytes;
            try (InputStream in = Files.newInputStream(path)) {
                bytes = in.readNBytes(MOST + 1);
            }
            String flaw = bytes.length < LEAST ? "it is shorter than " + LEAST + " bytes"
                : bytes.length > MOST ? "it is longer than " + MOST + " bytes"
                : different(bytes) < LEAST_DIFFERENT ? "its bytes are not random" : null;
            if (flaw != null) {
                throw new IOException(flaw);
            }
            return new Key(bytes);
        } catch (IOException | InvalidPathException unusable) {
            throw new IOException("'" + file + "' cannot be the key: "
                                  + (unusable instanceof NoSuchFileException ? "there is no such file"
                                     : unusable instanceof AccessDeniedException ? "permission denied"
                                     : unusable.getMessage()), unusable);
        }
    }

    private static int different(byte[] bytes) {
        boolean[] seen = new boolean[256];
        int count = 0;
        for (byte each : bytes) {
            count += seen[Byte.toUnsignedInt(each)] ? 0 : 1;
            seen[Byte.toUnsignedInt(each)] = true;
        }
        return count;
    }

    /** {@return its pseudonyms, for one description} */
    Pseudonyms pseudonyms() {
        return new Pseudonyms(permutation, words);
    }
}
