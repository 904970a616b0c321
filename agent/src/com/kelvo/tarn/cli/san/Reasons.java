package com.kelvo.tarn.cli.san;

import java.io.IOException;
import java.nio.file.AccessDeniedException;
import java.nio.file.NoSuchFileException;

/** Why a file cannot be read, in a few words. */
final class Reasons {
    private Reasons() {
    }

    static String of(IOException failed) {
        return failed instanceof NoSuchFileException ? "there is no such file"
            : failed instanceof AccessDeniedException ? "permission denied"
            : String.valueOf(failed.getMessage());
    }
}
