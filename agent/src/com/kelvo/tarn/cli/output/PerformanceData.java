package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.cli.answers.Asked;
import com.kelvo.tarn.cli.answers.CheckRules;
import java.util.ArrayList;
import java.util.List;
import java.util.Objects;

/** What monitoring draws graphs of, as the guidelines for plugins have it: 'label'=value;warning;critical;min;max. */
public final class PerformanceData {
    private final List<String> data = new ArrayList<>();

    /**
     * Takes what is measured.
     *
     * @param asked what was checked
     * @param rules with which limits
     */
    public PerformanceData(Asked asked, CheckRules rules) {
        if (asked.fewestPaths() != null) {
            data.add("paths_min=" + asked.fewestPaths() + ";;;0");
        }
        asked.fileSystemUses().forEach((mountPoint, use) -> {
            double percent = Objects.requireNonNullElse(use.usedPercent(), 100.0);
            data.add(label(mountPoint) + "=" + Units.decimal(percent, 1) + "%;" + rules.warningPercent(mountPoint) + ";"
                     + Objects.toString(rules.criticalPercent, "") + ";0;100");
        });
    }

    /** A label may hold neither an equals sign nor a bar, which ends it; a quote in it is doubled. */
    private static String label(String mountPoint) {
        return "'" + Page.printable(mountPoint).replace("'", "''").replace('=', '_').replace('|', '_') + "'";
    }

    /** {@return what stands behind the bar, after the counts of findings} */
    public String text() {
        return String.join(" ", data);
    }
}
