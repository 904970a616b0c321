package com.kelvo.tarn.cli.answers;

import java.util.ArrayList;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;

/**
 * What changed on a host between two times, and what is wrong with it only at one of them. Counters are no change: they
 * are rates; nor is how much of a file system is used.
 */
public final class Comparison {
    /** What a thing is: that one of the two times does not tell it is no change of the thing. */
    private static final Set<String> IDENTITY = Set.of("vendor", "product", "revision", "serial", "designator");

    /** One thing that is not as it was. */
    public static final class Change {
        /** What it is, and its name. */
        public final String subject;
        /** "appeared", "vanished" or "changed". */
        public final String change;
        /** What of it changed; null, as are the two below, when it appeared or vanished. */
        public final String property;
        /** The value in the old description; null when the property was not there. */
        public final Object was;
        /** The value in the new one; null when the property is not there any more. */
        public final Object is;

        private Change(String subject, String change, String property, Object was, Object is) {
            this.subject = subject;
            this.change = change;
            this.property = property;
            this.was = was;
            this.is = is;
        }
    }

    /** How full a file system was and is. */
    public static final class Usage {
        /** Where it is mounted. */
        public final String mountPoint;
        /** In the old description; null when it was not mounted, or its sizes were not told. */
        public final Double usedPercentBefore;
        /** In the new one; null likewise. */
        public final Double usedPercentAfter;

        private Usage(String mountPoint, Double before, Double after) {
            this.mountPoint = mountPoint;
            usedPercentBefore = before;
            usedPercentAfter = after;
        }
    }

    /** The host then. */
    public final Snapshot from;
    /** The host now. */
    public final Snapshot to;
    /** By section, in the order of the report. */
    public final List<Change> changes = new ArrayList<>();
    /** What a check finds now and did not find then. */
    public final List<Check.Finding> added;
    /** What a check found then and does not find now. */
    public final List<Check.Finding> cleared;
    /** Of each file system that tells its sizes in either description. */
    public final List<Usage> usage = new ArrayList<>();
    /** What the counters went up by. */
    public final Rates rates;

    /** Two calls may tell the same of a thing. */
    private final Set<List<String>> told = new HashSet<>();

    /**
     * Compares a host with itself at an earlier time.
     *
     * @param old then
     * @param now now
     */
    public Comparison(Snapshot old, Snapshot now) {
        from = old;
        to = now;
        now.sections.keySet().forEach(this::compare);
        added = without(now.findings, old.findings);
        cleared = without(old.findings, now.findings);
        Set<String> mountPoints = new LinkedHashSet<>(now.usage.keySet());
        mountPoints.addAll(old.usage.keySet());
        mountPoints.stream().filter(name -> old.usage.get(name) != null || now.usage.get(name) != null)
            .forEach(name -> usage.add(new Usage(name, old.usage.get(name), now.usage.get(name))));
        rates = new Rates(old, now);
    }

    /** {@return whether the host is as it was, and nothing else is wrong with it} */
    public boolean isEmpty() {
        return changes.isEmpty() && added.isEmpty() && cleared.isEmpty();
    }

    /** Of a section that either host refuses, only the refusal can be compared. */
    private void compare(String command) {
        String failedBefore = from.failures.get(command);
        String failedNow = to.failures.get(command);
        if (!Objects.equals(failedBefore, failedNow)) {
            changes.add(new Change(command, "changed", "exception", failedBefore, failedNow));
        }
        if (failedBefore == null && failedNow == null) {
            compare(from.sections.get(command), to.sections.get(command));
        }
    }

    private void compare(Map<String, Map<String, Object>> old, Map<String, Map<String, Object>> now) {
        Set<String> subjects = new LinkedHashSet<>(old.keySet());
        subjects.addAll(now.keySet());
        for (String subject : subjects) {
            if (!now.containsKey(subject)) {
                changes.add(new Change(subject, "vanished", null, null, null));
            } else if (!old.containsKey(subject)) {
                changes.add(new Change(subject, "appeared", null, null, null));
            } else {
                compare(subject, old.get(subject), now.get(subject));
            }
        }
    }

    private void compare(String subject, Map<String, Object> was, Map<String, Object> is) {
        Set<String> properties = new LinkedHashSet<>(was.keySet());
        properties.addAll(is.keySet());
        for (String property : properties) {
            boolean isKnown = !IDENTITY.contains(property) || was.containsKey(property) && is.containsKey(property);
            if (isKnown && !Objects.equals(was.get(property), is.get(property))
                && told.add(List.of(subject, property))) {
                changes.add(new Change(subject, "changed", property, was.get(property), is.get(property)));
            }
        }
    }

    /** The findings that are not among the others; of several alike, those that are more than there. */
    private static List<Check.Finding> without(List<Check.Finding> findings, List<Check.Finding> others) {
        Map<List<String>, Integer> left = new HashMap<>();
        others.forEach(other -> left.merge(identity(other), 1, Integer::sum));
        List<Check.Finding> without = new ArrayList<>();
        for (Check.Finding finding : findings) {
            if (left.merge(identity(finding), -1, Integer::sum) < 0) {
                without.add(finding);
            }
        }
        return without;
    }

    /** What makes two findings the same: what they are about; of lines of the library, also what they say. */
    private static List<String> identity(Check.Finding finding) {
        return List.of(finding.severity, finding.code, finding.subject,
                       finding.code.equals("library-warning") ? String.valueOf(finding.fact) : "");
    }
}
