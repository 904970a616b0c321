package com.kelvo.tarn.cli.serve;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.function.Supplier;
import java.util.zip.Deflater;
import java.util.zip.GZIPOutputStream;

/** What a request is answered with; it is packed once, however many ask for it. */
final class Body {
    final int status;
    final String type;
    private Supplier<String> text;
    private byte[] plain;
    private byte[] packed;

    /** Metrics repeat themselves so much that more effort than the least takes four times as long, and saves little. */
    private static final class FastGzip extends GZIPOutputStream {
        FastGzip(ByteArrayOutputStream out) throws IOException {
            super(out);
            def.setLevel(Deflater.BEST_SPEED);
        }
    }

    private Body(int status, String type, Supplier<String> text) {
        this.status = status;
        this.type = type;
        this.text = text;
    }

    /** Of a media type whose parameters lack the character set. */
    static Body of(String type, String text) {
        return of(type, () -> text);
    }

    /** The same of a text that is written when it is first wanted. */
    static Body of(String type, Supplier<String> text) {
        return new Body(200, type + "; charset=utf-8", text);
    }

    /** One line that says why there is nothing else. */
    static Body refusal(int status, String line) {
        return new Body(status, "text/plain; charset=utf-8", () -> line + "\n");
    }

    synchronized byte[] plain() {
        if (plain == null) {
            plain = text.get().getBytes(StandardCharsets.UTF_8);
            text = null;
        }
        return plain;
    }

    /** The same for those who can unpack it. */
    synchronized byte[] packed() {
        if (packed == null) {
            ByteArrayOutputStream out = new ByteArrayOutputStream();
            try (OutputStream gzip = new FastGzip(out)) {
                gzip.write(plain());
            } catch (IOException impossible) {
                throw new UncheckedIOException(impossible);
            }
            packed = out.toByteArray();
        }
        return packed;
    }
}
