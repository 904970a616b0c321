package com.kelvo.tarn.cli.output;

import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;

/** The texts that come with the classes. */
public final class Resources {
    private Resources() {
    }

    /**
     * {@return a text}
     *
     * @param beside the class in whose folder it is
     * @param name the file's
     */
    public static String text(Class<?> beside, String name) {
        try (InputStream in = beside.getResourceAsStream(name)) {
            return new String(in.readAllBytes(), StandardCharsets.UTF_8);
        } catch (IOException damaged) {
            throw new UncheckedIOException(damaged);
        }
    }
}
