package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.cli.output.Page;
import java.io.PrintWriter;
import java.util.function.Consumer;
import java.util.function.Predicate;

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
    /** Writes the answer. */
    final Consumer<PrintWriter> page;
    /** Writes it as a section of the report. */
    final Consumer<Page> summary;
    /** Which lines of the library's log people are shown beside it. */
    final Predicate<LibraryLog.Line> shownLog;

    Answer(Object result, Throwable thrown, String complaint, int status, Consumer<PrintWriter> page,
           Consumer<Page> summary, Predicate<LibraryLog.Line> shownLog) {
        this.result = result;
        this.thrown = thrown;
        this.complaint = complaint;
        this.status = status;
        this.page = page;
        this.summary = summary;
        this.shownLog = shownLog;
    }
}
