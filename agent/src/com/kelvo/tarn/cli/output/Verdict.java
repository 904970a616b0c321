package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.CheckRules;
import java.time.Duration;
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
     * {@return what a monitoring plugin prints: a line with the performance data at its end, then one a finding}
     *
     * @param check what was found
     * @param asked of what
     * @param rules with which limits
     * @param isExample whether it is the built-in host
     */
    public static PluginText plugin(Check check, Asked asked, CheckRules rules, boolean isExample) {
        String about = (asked.host.isBlank() ? "unnamed host" : asked.host)
            + (isExample ? ", the built-in example" : "")
            + (asked.recordedAt == null ? ""
                : ", recorded " + Units.age(Duration.between(asked.recordedAt, rules.now)) + " ago");
        return new PluginText("TARN " + check.state, about, check.findings.stream().map(finding -> new PluginText.Line(
            finding.severity, finding.code, FindingWords.subject(finding), FindingWords.message(finding)))
            .collect(Collectors.toList()), check.ignored, new PerformanceData(asked, rules).text());
    }
}
