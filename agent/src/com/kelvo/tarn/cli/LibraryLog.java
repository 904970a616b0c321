package com.kelvo.tarn.cli;

import com.kelvo.log.KelvoLogger;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import org.apache.log4j.AppenderSkeleton;
import org.apache.log4j.spi.LoggingEvent;

/** Collects the log lines of the agent, which are the library's. */
final class LibraryLog extends AppenderSkeleton {
    /** One line; the level is "info" or "warn". */
    static final class Line {
        private final String level;
        private final String message;

        Line(String level, String message) {
            this.level = level;
            this.message = message;
        }

        @Override
        public String toString() {
            return level + ": " + message;
        }
    }

    private final List<Line> lines = new ArrayList<>();

    LibraryLog() {
        KelvoLogger.deliverTo(this);
    }

    /** The lines since the last time, in order. */
    List<Line> take() {
        List<Line> taken = List.copyOf(lines);
        lines.clear();
        return taken;
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
