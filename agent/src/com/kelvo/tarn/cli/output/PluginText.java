package com.kelvo.tarn.cli.output;

import java.util.List;
import java.util.Locale;

/** What a monitoring plugin prints: a line with performance data at its end, then one for each finding. */
public final class PluginText {
    /** A finding. */
    public static final class Line {
        private final String severity;
        private final String code;
        private final String subject;
        private final String message;

        /**
         * A finding.
         *
         * @param severity "critical" or "warning"
         * @param code what is wrong, as programs know it
         * @param subject what it is wrong with
         * @param message what is wrong
         */
        public Line(String severity, String code, String subject, String message) {
            this.severity = severity;
            this.code = code;
            this.subject = subject;
            this.message = message;
        }

        private boolean isCritical() {
            return severity.equals("critical");
        }

        private String text() {
            return unbarred(String.format(Locale.ROOT, "%-11s  %-22s  %s: %s", (isCritical() ? Page.TROUBLE : "   ")
                                          + severity, code, subject, message));
        }
    }

    private final String state;
    private final String about;
    private final List<Line> findings;
    private final int ignored;
    private final String performanceData;

    /**
     * Takes what a check has come to.
     *
     * @param state after the plugin's name: "TARN WARNING"
     * @param about what was checked
     * @param findings worst first
     * @param ignored how many more there are
     * @param performanceData what is measured beside their counts; may be empty
     */
    public PluginText(String state, String about, List<Line> findings, int ignored, String performanceData) {
        this.state = state;
        this.about = about;
        this.findings = findings;
        this.ignored = ignored;
        this.performanceData = performanceData;
    }

    /** {@return the first line} */
    public String line() {
        long criticals = findings.stream().filter(Line::isCritical).count();
        String found = findings.isEmpty() ? "nothing found"
            : String.format(Locale.ROOT, "%d findings: %d critical, %d warnings", findings.size(), criticals,
                            findings.size() - criticals);
        String worst = findings.isEmpty() ? "" : "; " + findings.get(0).code + " " + findings.get(0).subject;
        return unbarred(Page.printable(state + " - " + about + ": " + found
                                       + (ignored == 0 ? "" : ", " + ignored + " ignored") + worst))
            + " | findings=" + findings.size() + ";;;0 critical=" + criticals + ";;;0"
            + (performanceData.isEmpty() ? "" : " " + performanceData);
    }

    /**
     * Prints it all.
     *
     * @param out where
     */
    public void show(Page out) {
        out.println(line());
        findings.forEach(finding -> out.printFolded("", " ".repeat(13), finding.text()));
    }

    /** A bar would end what monitoring reads as text. */
    private static String unbarred(String text) {
        return text.replace("|", "\\x7c");
    }
}
