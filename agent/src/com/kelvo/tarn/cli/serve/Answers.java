package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.metrics.Exposition;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.PluginText;
import com.kelvo.tarn.cli.output.Terminal;
import java.io.StringWriter;
import java.util.Map;

/** What was answered at one time, as each page shows it. */
abstract class Answers {
    private final Body metrics;
    private final Body openMetrics;
    private final Body check;
    private final Body plugin;
    private Body map;

    private Answers(Exposition exposition, Body check, Body plugin) {
        metrics = Body.of("text/plain; version=0.0.4", exposition::text);
        openMetrics = Body.of("application/openmetrics-text; version=1.0.0", exposition::openMetrics);
        this.check = check;
        this.plugin = plugin;
    }

    /**
     * All that was asked.
     *
     * @param document what is wrong, which the plugin's line precedes
     */
    Answers(Exposition exposition, Map<String, Object> document, PluginText text) {
        this(exposition, Body.of("application/json", () -> json(document, text)),
             Body.of("text/plain", () -> printed(text)));
    }

    /** Nothing but why there is nothing else. */
    Answers(Exposition exposition, String trouble) {
        this(exposition, Body.refusal(503, trouble), Body.refusal(503, trouble));
        map = check;
    }

    private static String json(Map<String, Object> document, PluginText text) {
        Map<String, Object> all = Json.object("line", text.line());
        all.putAll(document);
        return Json.text(all) + "\n";
    }

    private static String printed(PluginText text) {
        StringWriter printed = new StringWriter();
        try (Page page = new Page(printed, Terminal.NONE)) {
            text.show(page);
        }
        return printed.toString();
    }

    final Body metrics(Accepted accept) {
        return accept.prefers("application/openmetrics-text", "text/plain") ? openMetrics : metrics;
    }

    /** JSON, or what the plugin prints. */
    final Body check(Accepted accept) {
        boolean isText = accept.names("text/plain") && !accept.prefers("application/json", "text/plain");
        return isText ? plugin : check;
    }

    /** The page of the storage network, which is drawn when it is first wanted. */
    final synchronized Body map() {
        if (map == null) {
            try {
                map = Body.of("text/html", draw());
            } catch (IllegalStateException failed) {
                map = Body.refusal(503, Page.printable(String.valueOf(failed.getMessage())));
            }
        }
        return map;
    }

    /** The page's text; an IllegalStateException says why there is none. */
    abstract String draw();
}
