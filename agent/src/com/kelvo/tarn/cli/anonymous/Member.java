package com.kelvo.tarn.cli.anonymous;

import java.util.ArrayDeque;
import java.util.Deque;
import java.util.HashMap;
import java.util.Map;

/** A row of the table of members. */
final class Member {
    /** What has no row. */
    static final Member UNKNOWN = new Member(Kind.UNKNOWN);
    /** A whole description. */
    static final Member DESCRIPTION = table();

    /** Of the member's text. */
    final Kind kind;
    /** Of the names of its members that have no row each; null when all have. */
    private Kind names;
    private Member named;
    private final Map<String, Member> members = new HashMap<>();

    private Member(Kind kind) {
        this.kind = kind;
    }

    /** {@return the row of one of its members; null when there is none by that name} */
    Member member(String name) {
        return members.get(name);
    }

    /** What the names of its other members are. */
    Kind names() {
        return names == null ? Kind.UNKNOWN : names;
    }

    /** What its other members are. */
    Member named() {
        return names == null ? UNKNOWN : named;
    }

    private static Member table() {
        Member description = new Member(Kind.UNKNOWN);
        Deque<Member> around = new ArrayDeque<>();
        around.push(description);
        for (String line : Tables.lines("members.txt")) {
            String row = line.strip();
            int depth = (line.length() - row.length()) / 2;
            while (around.size() > depth + 1) {
                around.pop();
            }
            String[] parts = row.split(" {2,}", 2);
            Member member = parts.length == 1 ? new Member(Kind.UNKNOWN)
                : parts[1].startsWith("=") ? alike(description, parts[1].substring(1))
                : new Member(Kind.named(parts[1]));
            around.peek().add(parts[0], member);
            around.push(member);
        }
        return description;
    }

    private void add(String name, Member member) {
        if (name.startsWith("{")) {
            names = Kind.named(name.substring(1, name.length() - 1));
            named = member;
        } else {
            members.put(name, member);
        }
    }

    private static Member alike(Member description, String path) {
        Member found = description;
        for (String name : path.split("\\.")) {
            found = found.members.get(name);
        }
        return found;
    }
}
