package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import java.time.Duration;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.stream.Collectors;

/** What a check comes to, for monitoring. */
public final class Verdict {
    private Verdict() {
    }

    /**
     * {@return a check as JSON has it}
     *
     * @param check what was found
     * @param asked of what
     */
    public static Map<String, Object> document(Check check, Asked asked) {
        return Json.object(
            "state", check.state, "host", asked.host, "recordedAt", Objects.toString(asked.recordedAt, null),
            "ignored", check.ignored, "findings",
            check.findings.stream().map(Verdict::document).collect(Collectors.toList()));
    }

    /**
     * {@return one finding as JSON has it}
     *
     * @param finding of any kind
     */
    public static Map<String, Object> document(Check.Finding finding) {
        return Json.object("severity", finding.severity, "code", finding.code, "subject", finding.subject, "message",
                           FindingWords.message(finding), "disks", finding.disks, "mounts", finding.mounts);
    }

    /**
     * {@return the first line of a monitoring plugin, with the performance data at its end}
     *
     * @param check what was found
     * @param asked of what
     * @param rules with which limits
     * @param isExample whether it is the built-in host
     */
    public static String line(Check check, Asked asked, CheckRules rules, boolean isExample) {
        long criticals = check.findings.stream().filter(Check.Finding::isCritical).count();
        String found = check.findings.isEmpty() ? "nothing found"
            : String.format(Locale.ROOT, "%d findings: %d critical, %d warnings", check.findings.size(), criticals,
                            check.findings.size() - criticals);
        return unbarred(Page.printable(
            "TARN " + check.state + " - " + (asked.host.isBlank() ? "unnamed host" : asked.host)
            + (isExample ? ", the built-in example" : "")
            + (asked.recordedAt == null ? ""
                : ", recorded " + Units.age(Duration.between(asked.recordedAt, rules.now)) + " ago")
            + ": " + found + (check.ignored == 0 ? "" : ", " + check.ignored + " ignored")
            + check.findings.stream().limit(1).map(worst -> "; " + worst.code + " " + FindingWords.subject(worst))
                .collect(Collectors.joining())))
            + " | " + new PerformanceData(check, asked, rules).text();
    }

    /**
     * Prints what a monitoring plugin does: the line, then one for each finding.
     *
     * @param check what was found
     * @param asked of what
     * @param rules with which limits
     * @param isExample whether it is the built-in host
     * @param out where
     */
    public static void show(Check check, Asked asked, CheckRules rules, boolean isExample, Page out) {
        out.println(line(check, asked, rules, isExample));
        check.findings.forEach(finding -> out.printFolded("", " ".repeat(13), unbarred(String.format(
            Locale.ROOT, "%-11s  %-22s  %s: %s", (finding.isCritical() ? Page.TROUBLE : "   ") + finding.severity,
            finding.code, FindingWords.subject(finding), FindingWords.message(finding)))));
    }

    /** A bar would end what monitoring reads as text. */
    private static String unbarred(String text) {
        return text.replace("|", "\\x7c");
    }
}
