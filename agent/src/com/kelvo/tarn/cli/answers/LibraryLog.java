package com.kelvo.tarn.cli.answers;

import com.kelvo.log.KelvoLogger;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.function.Supplier;
import org.apache.log4j.AppenderSkeleton;
import org.apache.log4j.spi.LoggingEvent;

/**
 * Collects the log lines of the agent, which are the library's, for each thread those of its own calls: the first
 * {@value #KEPT}. A host on which every call fails has hundreds of thousands of them, and the rest is counted in a line
 * at the end.
 */
public final class LibraryLog extends AppenderSkeleton {
    /** One line. */
    public static final class Line {
        /** "info" or "warn". */
        public final String level;
        /** As the library logged it. */
        public final String message;

        private final transient boolean isOwn;
        private transient String subject = "";

        private Line(String level, String message, boolean isOwn) {
            this.level = level;
            this.message = message;
            this.isOwn = isOwn;
        }

        /** {@return whether it is the command line's own, and not the library's} */
        public boolean isOwn() {
            return isOwn;
        }

        /** {@return whether it tells of trouble} */
        public boolean isWarning() {
            return level.equals("warn");
        }

        /** {@return the disk that the line is about; empty when that is not known} */
        public String subject() {
            return subject;
        }

        /** {@return the message, after what it is about} */
        public String text() {
            return subject.isEmpty() ? message : subject + ": " + message;
        }
    }

    private static final int KEPT = 10_000;

    /** What a thread's calls have logged. */
    private static final class Kept {
        private final List<Line> lines = new ArrayList<>();
        private int unkept;
        private boolean unkeptWarnings;
    }

    private final ThreadLocal<Kept> kept = ThreadLocal.withInitial(Kept::new);
    /** Whose lines these are; null: everyone's. */
    private final Thread only;

    /** Collects from now on. */
    public LibraryLog() {
        this(null);
    }

    private LibraryLog(Thread only) {
        this.only = only;
        KelvoLogger.deliverTo(this);
    }

    /** {@return what collects from now on what the calls of this thread log, and of no other} */
    public static LibraryLog ofThisThread() {
        return new LibraryLog(Thread.currentThread());
    }

    /** {@return the lines since the last time, in order} */
    public List<Line> take() {
        List<Line> taken = since(0);
        kept.remove();
        return taken;
    }

    /** How many lines have come: a mark for {@link #since}. */
    int mark() {
        return kept.get().lines.size() + kept.get().unkept;
    }

    List<Line> since(int mark) {
        List<Line> lines = kept.get().lines;
        List<Line> since = new ArrayList<>(lines.subList(Math.min(mark, lines.size()), lines.size()));
        int more = mark() - Math.max(mark, lines.size());
        if (more > 0) {
            since.add(new Line(kept.get().unkeptWarnings ? "warn" : "info", "and " + more + " lines more", false));
        }
        return since;
    }

    /** The lines since the mark are about this. */
    void attribute(int mark, String subject) {
        since(mark).forEach(line -> line.subject = subject);
    }

    /** Asks a question; the lines that it brings are about this. */
    <T> T about(String subject, Supplier<T> question) {
        int mark = mark();
        T answer = question.get();
        attribute(mark, subject);
        return answer;
    }

    /**
     * {@return the answer to a question whose lines are not kept}
     *
     * @param <T> the answer
     * @param question what is asked
     */
    public <T> T unheard(Supplier<T> question) {
        Kept own = kept.get();
        int mark = own.lines.size();
        int unkeptBefore = own.unkept;
        boolean unkeptWarningsBefore = own.unkeptWarnings;
        try {
            return question.get();
        } finally {
            own.lines.subList(mark, own.lines.size()).clear();
            own.unkept = unkeptBefore;
            own.unkeptWarnings = unkeptWarningsBefore;
        }
    }

    /** A line of the command line's own, said once: what could not be asked, and why. */
    void warn(String message) {
        if (kept.get().lines.stream().noneMatch(line -> line.isOwn && line.message.equals(message))) {
            add(new Line("warn", message, true));
        }
    }

    private void add(Line line) {
        Kept own = kept.get();
        if (own.lines.size() < KEPT) {
            own.lines.add(line);
        } else {
            own.unkept++;
            own.unkeptWarnings |= line.isWarning();
        }
    }

    @Override
    protected void append(LoggingEvent event) {
        if (only != null && only != Thread.currentThread()) {
            return;
        }
        add(new Line(event.getLevel().toString().toLowerCase(Locale.ROOT), event.getRenderedMessage(), false));
    }

    @Override
    public void close() {
    }

    @Override
    public boolean requiresLayout() {
        return false;
    }
}
