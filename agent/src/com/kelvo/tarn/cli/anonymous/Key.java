package com.kelvo.tarn.cli.anonymous;

import com.kelvo.tarn.cli.output.Reasons;
import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
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
            if (Files.isDirectory(path)) {
                throw new IOException("it is a directory");
            }
            Set<PosixFilePermission> granted = EnumSet.copyOf(OF_OTHERS);
            granted.retainAll(Files.getPosixFilePermissions(path));
            if (!granted.isEmpty()) {
                throw new IOException("others may read or write it (chmod 600 makes it the owner's)");
            }
            byte[] bytes;
            try (InputStream in = Files.newInputStream(path)) {
                bytes = in.readNBytes(MOST + 1);
            }
            String flaw = bytes.length < LEAST ? "it is shorter than " + LEAST + " bytes"
                : bytes.length > MOST ? "it is longer than " + MOST + " bytes"
                : new String(bytes, StandardCharsets.ISO_8859_1).chars().distinct().count() < LEAST_DIFFERENT
                ? "its bytes are not random" : null;
            if (flaw != null) {
                throw new IOException(flaw);
            }
            return new Key(bytes);
        } catch (NoSuchFileException missing) {
            throw new IOException("'" + file + "' cannot be the key: there is no such file (32 bytes of /dev/urandom "
                                  + "make one)", missing);
        } catch (IOException | InvalidPathException unusable) {
            throw new IOException("'" + file + "' cannot be the key: " + Reasons.of(unusable), unusable);
        }
    }

    /** {@return its pseudonyms, for one description} */
    Pseudonyms pseudonyms() {
        return new Pseudonyms(permutation, words);
    }
}
