package com.kelvo.tarn.cli.san;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/** What all hold of the rows that are wanted, in SQL, with what its question marks stand for. */
final class Conditions {
    private final StringBuilder sql = new StringBuilder("TRUE");
    private final List<Object> values = new ArrayList<>();

    /** One more condition. */
    Conditions and(String condition, Object... values) {
        sql.append(" AND ").append(condition);
        this.values.addAll(Arrays.asList(values));
        return this;
    }

    /** The same of all of these, within a condition that says where they hold. */
    Conditions andWhere(String before, Conditions inner, String after) {
        return and(before + inner.sql() + after, inner.values());
    }

    /**
     * A name that matches a pattern, of whatever case, in which * stands for any text and ? for any character; null is
     * no condition.
     */
    Conditions like(String column, String pattern) {
        return pattern == null ? this
            : and("LOWER(" + column + ") LIKE LOWER(?) ESCAPE '!'",
                  pattern.replaceAll("[!%_]", "!$0").replace('*', '%').replace('?', '_'));
    }

    /** The same for a world-wide name, which the user may write with colons. */
    Conditions likeName(String column, String pattern) {
        return like(column, pattern == null ? null : pattern.replace(":", ""));
    }

    boolean isEmpty() {
        return values.isEmpty();
    }

    String sql() {
        return sql.toString();
    }

    Object[] values() {
        return values.toArray();
    }
}
