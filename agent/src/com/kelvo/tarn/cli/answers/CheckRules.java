package com.kelvo.tarn.cli.answers;

import java.time.Duration;
import java.time.Instant;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.regex.Pattern;

/** What makes a check find something, and what it is to keep to itself. */
public final class CheckRules {
    /** From how many per cent used on a file system is full: a warning. */
    public int warningPercent = FileSystemUse.FULL;
    /** The same for those that have a limit of their own, by mount point. */
    public final Map<String, Integer> warningPercents = new LinkedHashMap<>();
    /** From how many per cent on that is critical; null: only when nothing is available. */
    public Integer criticalPercent;
    /** A recording may be so old; null: as old as it likes. */
    public Duration maxAge;
    /** What ages are counted to. */
    public Instant now = Instant.now();

    private final List<Pattern> ignored = new ArrayList<>();

    /**
     * Silences findings.
     *
     * @param pattern CODE or CODE:SUBJECT, an asterisk in it standing for any text
     * @return false when no finding has such a code
     */
    public boolean ignore(String pattern) {
        String[] parts = pattern.split(":", 2);
        if (Check.codes().noneMatch(glob(parts[0]).asMatchPredicate())) {
            return false;
        }
        ignored.add(glob(parts.length == 1 ? pattern + ":*" : pattern));
        return true;
    }

    private static Pattern glob(String pattern) {
        return Pattern.compile("\\Q" + pattern.replace("\\E", "\\E\\\\E\\Q").replace("*", "\\E.*\\Q") + "\\E",
                               Pattern.DOTALL);
    }

    /**
     * {@return from how many per cent on the file system there is full}
     *
     * @param mountPoint where
     */
    public int warningPercent(String mountPoint) {
        return warningPercents.getOrDefault(mountPoint, warningPercent);
    }

    boolean isCritical(FileSystemUse use) {
        return use.isExhausted() || criticalPercent != null && use.isFull(criticalPercent);
    }

    boolean ignores(Check.Finding finding) {
        return ignored.stream().anyMatch(each -> each.matcher(finding.code + ":" + finding.subject).matches());
    }
}
