package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.answers.Check;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** What a picture of the storage network shows: things, the lines between them, and the paths along these lines. */
public final class Topology {
    /** What a thing is; in this order they stand from left to right. */
    enum Kind { HOST, ADAPTER, PORT, FABRIC, REMOTE_PORT, UNIT }

    /** How a thing does; the later, the worse. */
    enum State { UNUSED, GOOD, ONE_PATH, TROUBLE }

    /** What became of a thing or a path since an earlier time. */
    enum Since { SAME, ADDED, LOST }

    /** One of the things that share a box. */
    static final class Member {
        final String name;
        final String text;

        Member(String name, String text) {
            this.name = name;
            this.text = text;
        }
    }

    /** An array: its remote ports and logical units stand in one frame. */
    static final class Group {
        String title;
        final List<Node> nodes = new ArrayList<>();

        Group(String title) {
            this.title = title;
        }
    }

    /** A thing. Its name is unique, and that by which other commands call it; the title is what the box says first. */
    static final class Node {
        /** The place among the nodes. */
        final int number;
        final Kind kind;
        final String name;
        final String title;
        /** What the box says below its title. */
        final List<String> lines = new ArrayList<>();
        /** All that is known, by what it is called; shown when the thing is pointed at. */
        final Map<String, String> facts = new LinkedHashMap<>();
        /** What it is found by, beside what the box says, and what pointing at it in a picture tells after its name. */
        final List<String> identifiers = new ArrayList<>();
        /** Why the state is not good, the worst first; empty when it is. */
        final Set<String> reasons = new LinkedHashSet<>();
        /** Those that share the box; empty when it is one thing's own. */
        final List<Member> members = new ArrayList<>();
        /** By this they stand one below the other. */
        String order;
        /** The colour of the one fabric that all ways through it cross; null when there is none, or more. */
        Palette hue;
        Since since = Since.SAME;
        State state = State.GOOD;

        private Node(int number, Kind kind, String name, String title) {
            this.number = number;
            this.kind = kind;
            this.name = name;
            this.title = title;
            order = name;
        }

        /** A line of the box and a fact alike; a blank value is neither. */
        void line(String label, String value) {
            if (!value.isBlank() && !lines.contains(value)) {
                lines.add(value);
                fact(label, value);
            }
        }

        void fact(String label, String value) {
            if (!value.isBlank()) {
                facts.put(label, value);
            }
        }

        /** The worst state counts, each reason once. */
        void is(State found, String reason) {
            state = found == State.UNUSED && state == State.GOOD || found.compareTo(state) > 0 ? found : state;
            reasons.add(reason);
        }
    }

    /** A line. */
    static final class Edge {
        final Node from;
        final Node to;
        /** What stands at the line. */
        final String label;
        /** What it carries, shown when it is pointed at. */
        final String hint;
        /** The colour of the fabric that it crosses, or null. */
        Palette hue;
        Since since = Since.SAME;
        private State own;

        private Edge(Node from, Node to, String label, String hint, State state) {
            this.from = from;
            this.to = to;
            this.label = label;
            this.hint = hint;
            own = state;
        }

        /** The worst state counts. */
        void is(State found) {
            own = own == null || found.compareTo(own) > 0 ? found : own;
        }

        /** A line of which nothing else is known does as the thing that it leads to. */
        State state() {
            return own != null ? own : to.state;
        }
    }

    /** A path as a row of the table, and the thing that stands for its logical unit. */
    static final class Row {
        final List<String> cells;
        final Node unit;

        private Row(List<String> cells, Node unit) {
            this.cells = cells;
            this.unit = unit;
        }
    }

    /** What the table's columns are called. */
    static final List<String> COLUMNS = List.of("Array", "LUN", "Remark", "Device", "Adapter", "Port", "Port WWN",
                                                "Port state", "Remote port", "Remote port state", "Size", "Mounted",
                                                "Bus", "Target", "Serial number", "Designator");

    final String title;
    /** What there is, and how many. */
    String summary = "";
    /** What else was told of the host: when it was recorded, and who drew this. */
    String origin = "";
    /** What is wrong with the host, or null. */
    Check check;
    /** Whether an earlier time is shown, too. */
    boolean compares;
    final Map<String, Node> nodes = new LinkedHashMap<>();
    /** The box that stands for what other commands call so, where the box has another name. */
    final Map<String, Node> places = new HashMap<>();
    final Map<String, Group> groups = new LinkedHashMap<>();
    final List<Edge> edges = new ArrayList<>();
    /** Each the things from the host to a logical unit, or as far as it goes. */
    final Set<List<Node>> paths = new LinkedHashSet<>();
    final List<Row> rows = new ArrayList<>();
    private final Map<List<Node>, Edge> joined = new HashMap<>();

    Topology(String title) {
        this.title = title;
    }

    /** The thing of that name, made when there is none. */
    Node node(Kind kind, String name, String title) {
        return nodes.computeIfAbsent(name, absent -> new Node(nodes.size(), kind, name, title));
    }

    /**
     * Sets what stands above the picture.
     *
     * @param found what is wrong with the host
     * @param told when it was recorded, and who drew this
     */
    public void origin(Check found, String told) {
        check = found;
        origin = told;
    }

    /** The box of what other commands call so, or null. */
    Node at(String place) {
        return places.getOrDefault(place, nodes.get(place));
    }

    /** A thing within a group, which is made when there is none of that title; without a title, in no group. */
    Node node(Kind kind, String name, String title, String group) {
        if (!nodes.containsKey(name) && !group.isEmpty()) {
            groups.computeIfAbsent(group, Group::new).nodes.add(node(kind, name, title));
        }
        return node(kind, name, title);
    }

    /** One line between two things, however often they are joined. */
    Edge join(Node from, Node to) {
        return joined.computeIfAbsent(List.of(from, to),
                                      absent -> draw(from, to, "", from.name + " to " + to.name, null));
    }

    /** A row of the table, a cell for each column. */
    void row(Node unit, List<String> cells) {
        rows.add(new Row(cells, unit));
    }

    /** One line more between two things. */
    Edge draw(Node from, Node to, String label, String hint, State state) {
        Edge edge = new Edge(from, to, label, hint, state);
        edges.add(edge);
        return edge;
    }
}
