package com.kelvo.tarn.cli.answers;

import com.kelvo.log.KelvoLogger;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.function.Supplier;
import org.apache.log4j.AppenderSkeleton;
import org.apache.log4j.spi.LoggingEvent;

/** Collects the log lines of the agent, which are the library's. */
public final class LibraryLog extends AppenderSkeleton {
    /** One line. */
    public static final class Line {
        /** "info" or "warn". */
        public final String level;
        /** As the library logged it. */
        public final String message;

        private transient String subject = "";

        private Line(String level, String message) {
            this.level = level;
            this.message = message;
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

    private final List<Line> lines = new ArrayList<>();

    /** Collects from now on. */
    public LibraryLog() {
        KelvoLogger.deliverTo(this);
    }

    /** {@return the lines since the last time, in order} */
    public List<Line> take() {
        List<Line> taken = List.copyOf(lines);
        lines.clear();
        return taken;
    }

    /** How many lines there are: a mark for {@link #since}. */
    int mark() {
        return lines.size();
    }

    List<Line> since(int mark) {
        return lines.subList(mark, lines.size());
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

    /** A line of the command line's own: what could not be asked, and why. */
    void warn(String message) {
        lines.add(new Line("warn", message));
    }

    @Override
    protected void append(LoggingEvent event) {
        lines.add(new Line(event.getLevel().toString().toLowerCase(Locale.ROOT), event.getRenderedMessage()));
    }

    @Override
    public void close() {
    }

    @Override
    public boolean requiresLayout() {
        return false;
    }
}
