package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Terminal;
import java.io.PrintWriter;
import java.util.List;
import java.util.function.Consumer;
import java.util.function.Function;
import java.util.function.Predicate;
import java.util.function.Supplier;

/** What came of one question to the library, and how it is shown. */
public final class Answer {
    /** What JSON shows; null for nothing, and after an exception. */
    public final Object result;
    /** What the native call threw, or null. */
    public final Throwable thrown;
    /** What people are told in place of a page, or null. */
    final String complaint;
    private int status;
    /** Writes the answer. */
    Consumer<PrintWriter> page = out -> { };
    private Consumer<Page> summary = out -> { };
    /** Null when it is no table. */
    Supplier<Table<?>> table;
    /** Which lines of the library's log people are shown beside it. */
    Predicate<LibraryLog.Line> shownLog = line -> true;

    private Answer(Object result, Throwable thrown, String complaint) {
        this.result = result;
        this.thrown = thrown;
        this.complaint = complaint;
        status = complaint == null ? 0 : 1;
    }

    /**
     * {@return an answer that people see as a page}
     *
     * @param result what JSON shows
     * @param page writes it
     */
    public static Answer page(Object result, Consumer<Page> page) {
        return new Answer(result, null, null).shownAs(page);
    }

    /**
     * {@return an answer that is a table}
     *
     * @param result what JSON shows
     * @param table makes it
     */
    public static Answer table(Object result, Supplier<Table<?>> table) {
        Answer answer = page(result, out -> table.get().print(out));
        answer.table = table;
        return answer;
    }

    /** An answer for other programs, which is printed as it is; null prints nothing. */
    static Answer text(String text) {
        Answer answer = new Answer(text, null, null);
        answer.page = out -> out.print(text == null ? "" : text);
        return answer;
    }

    /**
     * {@return the answer that there is no such thing}
     *
     * @param complaint what people are told: "no disk c9t9d9"
     */
    public static Answer missing(String complaint) {
        return new Answer(null, null, complaint).withLog(line -> false);
    }

    /**
     * {@return all things of a kind, or the one that is wanted, as a table}
     *
     * @param <K> what names one
     * @param <E> the things
     * @param noun what they are called; singular, and takes an s
     * @param wanted which one; null for all
     * @param all asks for all
     * @param one asks for one; it answers null when there is none
     * @param table shows them
     */
    public static <K, E> Answer listing(String noun, K wanted, Supplier<List<E>> all, Function<K, E> one,
                                        Function<List<E>, Table<?>> table) {
        if (wanted == null) {
            List<E> found = all.get();
            Answer answer = table(found, () -> table.apply(found));
            return found.isEmpty() ? answer.shownAs(out -> out.println("no " + noun + "s")) : answer;
        }
        String name = noun + " " + wanted;
        E found;
        try {
            found = one.apply(wanted);
        } catch (RuntimeException | Error thrown) {
            String message = message(thrown);
            return failed(thrown, message.contains(wanted.toString()) ? message : name + ": " + message);
        }
        return found == null ? missing("no " + name) : table(found, () -> table.apply(List.of(found)));
    }

    /** What the native call threw. */
    static Answer failed(Throwable thrown) {
        return failed(thrown, message(thrown));
    }

    private static String message(Throwable thrown) {
        return thrown.getMessage() != null ? thrown.getMessage() : thrown.toString();
    }

    private static Answer failed(Throwable thrown, String message) {
        Answer answer = new Answer(null, thrown, message);
        answer.summary = out -> out.println(Page.TROUBLE + message);
        return answer;
    }

    /**
     * Shows people something else than the table.
     *
     * @param shown writes the answer, also as a section of the report
     * @return this answer
     */
    public Answer shownAs(Consumer<Page> shown) {
        page = out -> shown.accept(new Page(out, Terminal.ofStandardOutput()));
        return summarizedAs(shown);
    }

    /**
     * Shows people a line more below what they see.
     *
     * @param remark the line
     * @return this answer
     */
    public Answer followedBy(String remark) {
        Consumer<Page> shown = summary;
        return shownAs(out -> {
            shown.accept(out);
            out.printFolded(remark);
        });
    }

    /**
     * Sets what the report shows.
     *
     * @param shown writes the answer as a section of it
     * @return this answer
     */
    public Answer summarizedAs(Consumer<Page> shown) {
        summary = shown;
        return this;
    }

    /**
     * Sets the exit status, which is 0 without.
     *
     * @param called what the answer calls for
     * @return this answer
     */
    public Answer withStatus(int called) {
        status = called;
        return this;
    }

    /**
     * Sets which lines of the library's log people are shown beside the answer; JSON has them all.
     *
     * @param shown whether a line is
     * @return this answer
     */
    public Answer withLog(Predicate<LibraryLog.Line> shown) {
        shownLog = shown;
        return this;
    }

    /** {@return the exit status that the answer calls for} */
    public int status() {
        return status;
    }

    /**
     * Writes the answer as a section of the report.
     *
     * @param out where
     */
    public void summarize(Page out) {
        summary.accept(out);
    }
}
