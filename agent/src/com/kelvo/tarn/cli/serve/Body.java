package com.kelvo.tarn.cli.serve;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.zip.GZIPOutputStream;

/** What a request is answered with; it is packed once, however many ask for it. */
final class Body {
    final int status;
    final String type;
    final byte[] plain;
    private byte[] packed;

    private Body(int status, String type, String text) {
        this.status = status;
        this.type = type;
        plain = text.getBytes(StandardCharsets.UTF_8);
    }

    /** Of a media type whose parameters lack the character set. */
    static Body of(String type, String text) {
        return new Body(200, type + "; charset=utf-8", text);
    }

    /** One line that says why there is nothing else. */
    static Body refusal(int status, String line) {
        return new Body(status, "text/plain; charset=utf-8", line + "\n");
    }

    /** The same for those who can unpack it. */
    synchronized byte[] packed() {
        if (packed == null) {
            ByteArrayOutputStream out = new ByteArrayOutputStream();
            try (GZIPOutputStream gzip = new GZIPOutputStream(out)) {
                gzip.write(plain);
            } catch (IOException impossible) {
                throw new UncheckedIOException(impossible);
            }
            packed = out.toByteArray();
        }
        return packed;
    }
}
