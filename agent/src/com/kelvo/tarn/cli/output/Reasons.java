package com.kelvo.tarn.cli.output;

import java.nio.file.AccessDeniedException;
import java.nio.file.FileSystemException;
import java.nio.file.NoSuchFileException;

/** Why a file cannot be read, in a few words. */
public final class Reasons {
    private Reasons() {
    }

    /**
     * {@return the reason, which does not name the file}
     *
     * @param failed what reading it threw
     */
    public static String of(Exception failed) {
        return failed instanceof NoSuchFileException ? "there is no such file"
            : failed instanceof AccessDeniedException ? "permission denied"
            : failed instanceof FileSystemException && ((FileSystemException) failed).getReason() != null
                ? ((FileSystemException) failed).getReason() // without the file's name
            : String.valueOf(failed.getMessage());
    }
}
