package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import java.util.function.Consumer;

/** What came of one question to the library. */
final class Answer {
    /** What JSON shows; null for nothing, and after an exception. */
    final Object result;
    /** What the native call threw, or null. */
    final Throwable thrown;
    /** What people are told in place of a page, or null. */
    final String complaint;
    /** The exit status that the answer calls for. */
    final int status;
    /** Writes the answer for people. */
    final Consumer<Page> page;
    /** Writes it as a section of the report. */
    final Consumer<Page> summary;

    Answer(Object result, Throwable thrown, String complaint, int status, Consumer<Page> page, Consumer<Page> summary) {
        this.result = result;
        this.thrown = thrown;
        this.complaint = complaint;
        this.status = status;
        this.page = page;
        this.summary = summary;
    }
}
