package com.kelvo.tarn.cli.answers;

import java.time.Duration;
import java.time.Instant;
import java.util.LinkedHashMap;
import java.util.Map;

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
    /** What the check is to keep to itself. */
    public final IgnoredFindings ignored = new IgnoredFindings(Check.codes());

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
}
