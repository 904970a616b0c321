package com.kelvo.tarn.cli;

import java.io.PrintWriter;
import java.util.function.Consumer;

/**
 * What came of one question to the library.
 *
 * @param result what JSON shows; null for nothing, and after an exception
 * @param thrown what the native call threw, or null
 * @param status the exit status that the answer calls for
 * @param page writes the answer for people
 * @param summary writes it as a section of the report
 */
record Answer(Object result, Throwable thrown, int status, Consumer<PrintWriter> page, Consumer<PrintWriter> summary) {
}
