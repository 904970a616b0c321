package com.kelvo.tarn.cli.san;

import java.io.ByteArrayInputStream;
import java.io.EOFException;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.attribute.BasicFileAttributes;
import java.time.Instant;
import java.util.zip.CRC32;
import java.util.zip.CRC32C;
import java.util.zip.Checksum;
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
     * Two checksums in hexadecimal digits, 64 bits together. They protect nothing, and tell recordings apart in a tenth
     * of the time of MD5: for these, code that is compiled quickly has the processor's own instructions.
     */
    String digest() {
        return digits(new CRC32()) + digits(new CRC32C());
    }

    private String digits(Checksum checksum) {
        checksum.update(text, 0, text.length);
        return String.format("%08x", checksum.getValue());
    }
}
