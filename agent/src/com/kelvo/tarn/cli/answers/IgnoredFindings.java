package com.kelvo.tarn.cli.answers;

import java.util.ArrayList;
import java.util.List;
import java.util.Set;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What a check is to keep to itself. */
public final class IgnoredFindings {
    private final Set<String> codes;
    private final List<Pattern> patterns = new ArrayList<>();

    /**
     * Nothing so far.
     *
     * @param codes those that findings may have
     */
    public IgnoredFindings(Stream<String> codes) {
        this.codes = codes.collect(Collectors.toSet());
    }

    /**
     * Silences findings.
     *
     * @param pattern CODE or CODE:SUBJECT, an asterisk in it standing for any text
     * @return false when no finding has such a code
     */
    public boolean add(String pattern) {
        String[] parts = pattern.split(":", 2);
        if (codes.stream().noneMatch(glob(parts[0]).asMatchPredicate())) {
            return false;
        }
        patterns.add(glob(parts.length == 1 ? pattern + ":*" : pattern));
        return true;
    }

    private static Pattern glob(String pattern) {
        return Pattern.compile("\\Q" + pattern.replace("\\E", "\\E\\\\E\\Q").replace("*", "\\E.*\\Q") + "\\E",
                               Pattern.DOTALL);
    }

    /**
     * {@return whether a finding is silenced}
     *
     * @param code its code
     * @param subject what it is about
     */
    public boolean contains(String code, String subject) {
        return patterns.stream().anyMatch(each -> each.matcher(code + ":" + subject).matches());
    }
}
