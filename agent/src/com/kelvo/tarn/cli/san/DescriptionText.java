package com.kelvo.tarn.cli.san;

import java.io.ByteArrayInputStream;
import java.io.EOFException;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.attribute.BasicFileAttributes;
import java.security.MessageDigest;
import java.security.NoSuchAlgorithmException;
import java.time.Instant;
import java.util.zip.GZIPInputStream;
import java.util.zip.ZipException;

/** The text of a description, read once, and unpacked where gzip has packed it. */
final class DescriptionText {
    /** More would be no description, but what a small packed file can make of itself. */
    private static final int MOST = 1 << 30;
    private static final int GZIP = 0x8b1f;

    final byte[] text;
    /** When the file was last written. */
    final Instant writtenAt;

    /** Throws an IllegalArgumentException with the reason when it is no description's, or changes meanwhile. */
    DescriptionText(Path path) throws IOException {
        BasicFileAttributes before = Files.readAttributes(path, BasicFileAttributes.class);
        if (!before.isRegularFile()) {
            throw new IllegalArgumentException("it is no regular file");
        }
        byte[] bytes = before.size() > MOST ? tooLarge() : Files.readAllBytes(path);
        BasicFileAttributes after = Files.readAttributes(path, BasicFileAttributes.class);
        if (bytes.length != before.size() || before.size() != after.size()
            || !before.lastModifiedTime().equals(after.lastModifiedTime())) {
            throw new IllegalArgumentException("it changed while it was read");
        }
        text = isPacked(bytes) ? unpacked(bytes) : bytes;
        writtenAt = before.lastModifiedTime().toInstant();
    }

    private static boolean isPacked(byte[] bytes) {
        return bytes.length > 1 && ((bytes[1] & 0xff) << 8 | bytes[0] & 0xff) == GZIP;
    }

    private static byte[] unpacked(byte[] bytes) throws IOException {
        try (InputStream in = new GZIPInputStream(new ByteArrayInputStream(bytes))) {
            byte[] text = in.readNBytes(MOST);
            return in.read() < 0 ? text : tooLarge();
        } catch (EOFException cut) {
            throw new IllegalArgumentException("what gzip has packed there is cut off");
        } catch (ZipException damaged) {
            throw new IllegalArgumentException("what gzip has packed there is damaged");
        }
    }

    private static byte[] tooLarge() {
        throw new IllegalArgumentException("it has more than 1 GiB");
    }

    /**
     * MD5 in hexadecimal digits. It protects nothing, and tells recordings apart in a quarter of the time of SHA-256,
     * of which there are no instructions of the processor's own for code that is compiled quickly.
     */
    String digest() {
        try {
            StringBuilder digits = new StringBuilder();
            for (byte each : MessageDigest.getInstance("MD5").digest(text)) {
                digits.append(Character.forDigit(each >> 4 & 0xf, 16)).append(Character.forDigit(each & 0xf, 16));
            }
            return digits.toString();
        } catch (NoSuchAlgorithmException impossible) {
            throw new IllegalStateException(impossible);
        }
    }
}
