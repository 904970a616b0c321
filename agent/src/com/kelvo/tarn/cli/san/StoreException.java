package com.kelvo.tarn.cli.san;

/** The store cannot be used: the message names it and says in one line why. */
public final class StoreException extends RuntimeException {
    private static final long serialVersionUID = 1;

    StoreException(String message, Throwable cause) {
        super(message, cause);
    }
}
