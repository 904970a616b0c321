package com.kelvo.log;

import java.util.ArrayList;
import java.util.List;
import org.apache.log4j.Appender;
import org.apache.log4j.Logger;

/** The agent's loggers. log4j takes a quarter of a second to start, so it does not until there is a line to log. */
public final class KelvoLogger {
    private static final List<Appender> WAITING = new ArrayList<>();
    private static Logger agent;

    private KelvoLogger() {
    }

    /**
     * Hands the agent's lines to this appender too.
     *
     * @param appender takes the lines of all loggers below "com.kelvo"
     */
    public static synchronized void deliverTo(Appender appender) {
        if (agent != null) {
            agent.addAppender(appender);
        } else {
            WAITING.add(appender);
        }
    }

    /**
     * {@return the logger of one of the agent's classes}
     *
     * @param source the class
     */
    public static synchronized Logger of(Class<?> source) {
        if (agent == null) {
            agent = Logger.getLogger("com.kelvo");
            WAITING.forEach(agent::addAppender);
        }
        return Logger.getLogger(source);
    }
}
