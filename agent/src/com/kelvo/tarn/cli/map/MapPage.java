package com.kelvo.tarn.cli.map;

import com.google.gson.Gson;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.output.FindingWords;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Collectors;

/** The page of a topology. */
final class MapPage {
    /** So many paths have a row; what is in trouble comes first then. */
    private static final int MOST_ROWS = 2000;
    /** Of more rows only those of units in trouble are printed. */
    private static final int MOST_PRINTED = 200;

    private MapPage() {
    }

    /** The page around a picture of the topology. With all, no path lacks a row. */
    static String of(Topology topology, String svg, boolean all) {
        Map<String, String> parts = new HashMap<>();
        parts.put("title", PageFrame.escaped(topology.title));
        parts.put("find", "Filter");
        parts.put("sought", "a name, a WWN, a mount point");
        parts.put("hint", "A question mark before it searches all facts, too");
        parts.put("summary", PageFrame.escaped(topology.summary));
        parts.put("origin", PageFrame.escaped(topology.origin));
        parts.put("verdict", verdict(topology.check));
        parts.put("state", topology.check.state.toLowerCase(Locale.ROOT));
        parts.put("troubles", troubles(topology));
        parts.put("picture", svg);
        parts.put("data", data(topology));
        parts.put("columns", Topology.COLUMNS.stream()
                                 .map(column -> "<th scope=\"col\"><span role=\"button\" tabindex=\"0\">" + column
                                          + "</span></th>").collect(Collectors.joining()));
        List<Topology.Row> rows = rows(topology, all);
        long good = rows.stream().filter(row -> row.unit.state.compareTo(Topology.State.GOOD) <= 0).count();
        parts.put("printed", rows.size() <= MOST_PRINTED ? "" : good == rows.size() ? "many none" : "many");
        parts.put("unprinted", rows.size() <= MOST_PRINTED ? "" : String.format(
            Locale.ROOT, "%,d paths of units in order are not printed.", good));
        parts.put("rows", rows.stream().map(MapPage::row).collect(Collectors.joining()));
        parts.put("note", rows.isEmpty() ? "There are none."
            : rows.size() == topology.rows.size() ? "" : String.format(
                Locale.ROOT, "These are %,d of %,d paths, those in trouble first: the command paths shows all, and so "
                + "does map --all.", rows.size(), topology.rows.size()));
        return PageFrame.of("page.html", parts, null, "d3.min.js", "stage.js", "page.js");
    }

    /** All rows, or those that there is room for. */
    private static List<Topology.Row> rows(Topology topology, boolean all) {
        return all || topology.rows.size() <= MOST_ROWS ? topology.rows
            : topology.rows.stream().sorted(Comparator.comparing((Topology.Row row) -> row.unit.state).reversed())
                  .limit(MOST_ROWS).collect(Collectors.toList());
    }

    private static String row(Topology.Row row) {
        return "<tr class=\"" + name(row.unit.state) + "\" data-thing=\"" + row.unit.number + "\">"
            + row.cells.stream().map(text -> "<td>" + PageFrame.escaped(text) + "</td>").collect(Collectors.joining())
            + "</tr>\n";
    }

    /** What the check says, as its first line does. */
    private static String verdict(Check check) {
        return check.state + (check.findings.isEmpty() ? ": nothing found" : String.format(
            Locale.ROOT, ": %,d finding%s", check.findings.size(), check.findings.size() == 1 ? "" : "s"));
    }

    /** All that the check found; what is in the picture leads there. */
    private static String troubles(Topology topology) {
        return topology.check.findings.stream().map(finding -> {
            Topology.Node box = topology.at(finding.subject);
            String subject = PageFrame.escaped(FindingWords.subject(finding));
            return "<li class=\"" + finding.severity + "\">"
                + (box == null ? subject : "<a href=\"#" + Dot.id(box) + "\">" + subject + "</a>") + ": "
                + PageFrame.escaped(FindingWords.message(finding)) + "</li>\n";
        }).collect(Collectors.joining());
    }

    /** What the script knows of the things, the lines and the ways, each thing by its number. */
    private static String data(Topology topology) {
        List<Map<String, Object>> things = new ArrayList<>();
        for (Topology.Node node : topology.nodes.values()) {
            Map<String, String> facts = new LinkedHashMap<>();
            node.facts.forEach((label, value) -> facts.put(label, Page.printable(value)));
            things.add(Json.object(
                "name", Page.printable(node.name), "state", name(node.state),
                "reasons", node.reasons.stream().map(Page::printable).collect(Collectors.toList()), "facts", facts,
                "column", node.kind.ordinal(), "text",
                Page.printable(node.title + " " + String.join(" ", node.lines) + " "
                               + String.join(" ", node.identifiers)),
                "members", node.members.stream().map(member -> List.of(
                    Page.printable(member.name), Page.printable(member.text))).collect(Collectors.toList())));
        }
        return new Gson().toJson(Json.object( // which escapes what would end the element
            "things", things,
            "lines", topology.edges.stream().map(edge -> List.of(edge.from.number, edge.to.number))
                .collect(Collectors.toList()),
            "ways", topology.paths.stream()
                .map(path -> path.stream().map(node -> node.number).collect(Collectors.toList()))
                .collect(Collectors.toList())));
    }

    private static String name(Topology.State state) {
        return state.name().toLowerCase(Locale.ROOT).replace('_', '-');
    }
}
