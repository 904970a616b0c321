package com.kelvo.tarn.cli.answers;

import java.util.ArrayList;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;

/** What changed on a host between two times. Counters are no change: they are rates. */
public final class Comparison {
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

    /** By section, in the order of the report. */
    public final List<Change> changes = new ArrayList<>();
    /** Null: it is not known how much time lies between the two. */
    public final Rates rates;

    /**
     * Compares a host with itself at an earlier time.
     *
     * @param old then
     * @param now now
     */
    public Comparison(Snapshot old, Snapshot now) {
        now.sections.keySet().forEach(command -> compare(command, old, now));
        rates = Rates.between(old, now);
    }

    /** Of a section that either host refuses, only the refusal can be compared. */
    private void compare(String command, Snapshot old, Snapshot now) {
        String failedBefore = old.failures.get(command);
        String failedNow = now.failures.get(command);
        if (!Objects.equals(failedBefore, failedNow)) {
            changes.add(new Change(command, "changed", "exception", failedBefore, failedNow));
        }
        if (failedBefore == null && failedNow == null) {
            compare(old.sections.get(command), now.sections.get(command));
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
            if (!Objects.equals(was.get(property), is.get(property))) {
                changes.add(new Change(subject, "changed", property, was.get(property), is.get(property)));
            }
        }
    }
}
