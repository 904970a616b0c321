package com.kelvo.tarn.cli;

import java.io.PrintWriter;
import java.util.function.Consumer;

/** What came of one question to the library. */
final class Answer {
    /** What JSON shows; null for nothing, and after an exception. */
    final Object result;
    /** What the native call threw, or null. */
    final Throwable thrown;
    /** The exit status that the answer calls for. */
    final int status;
    /** Writes the answer for people. */
    final Consumer<PrintWriter> page;
    /** Writes it as a section of the report. */
    final Consumer<PrintWriter> summary;

    Answer(Object result, Throwable thrown, int status, Consumer<PrintWriter> page, Consumer<PrintWriter> summary) {
        this.result = result;
        this.thrown = thrown;
        this.status = status;
        this.page = page;
        this.summary = summary;
    }
}
