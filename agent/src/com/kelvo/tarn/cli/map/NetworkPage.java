package com.kelvo.tarn.cli.map;

import com.google.gson.Gson;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.cli.san.NetworkFinding;
import com.kelvo.tarn.cli.san.NetworkTopology;
import com.kelvo.tarn.cli.san.NetworkTopology.Host;
import com.kelvo.tarn.cli.san.NetworkTopology.Reach;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;

/** The page of a network: its drawing, what is wrong with it, and all that its script answers questions from. */
final class NetworkPage {
    private NetworkPage() {
    }

    /**
     * The page around a drawing.
     *
     * @param origin where the network is known from
     */
    static String of(NetworkPicture picture, String svg, String origin) {
        NetworkTopology network = picture.network;
        Map<String, String> parts = new HashMap<>();
        parts.put("title", "Storage network");
        parts.put("find", "Find");
        parts.put("sought", "a host, a WWN, a unit, a mount point");
        parts.put("hint", "");
        parts.put("summary", PageFrame.escaped(String.format(
            Locale.ROOT, "%s in %s, %s, %s with %s, %s, %s", Wording.count(network.hosts.size(), "host"),
            Wording.count(picture.groups.size(), "group"), Wording.count(network.fabrics.size(), "fabric"),
            Wording.count(network.arrays.size(), "array"), Wording.count(network.arrayPorts.size(), "port"),
            Wording.count(network.units.size(), "logical unit"), Wording.count(network.paths, "path"))));
        parts.put("origin", PageFrame.escaped(origin));
        parts.put("verdict", picture.check.state + ": " + (picture.check.findings.isEmpty() ? "nothing found"
            : Wording.count(picture.check.findings.size(), "finding"))
            + (picture.check.ignored == 0 ? "" : ", " + picture.check.ignored + " ignored"));
        parts.put("state", picture.check.state.toLowerCase(Locale.ROOT));
        parts.put("troubles", troubles(picture.check.findings));
        parts.put("picture", svg);
        parts.put("data", data(picture));
        return PageFrame.of("network.html", parts, "network.css", "d3.min.js", "stage.js", "answers.js", "network.js");
    }

    private static String troubles(List<NetworkFinding> findings) {
        StringBuilder items = new StringBuilder();
        for (int i = 0; i < findings.size(); i++) {
            NetworkFinding finding = findings.get(i);
            items.append(String.format(
                Locale.ROOT, "<li class=\"%s\"><a href=\"#\" data-finding=\"%d\">%s</a>: %s%s</li>\n",
                finding.severity(), i, PageFrame.escaped(finding.subject), PageFrame.escaped(finding.message()),
                finding.hosts().contains(finding.subject) ? "" : PageFrame.escaped(hosts(finding.hosts()))));
        }
        return items.toString();
    }

    private static String hosts(List<String> names) {
        return names.isEmpty() ? "" : " – " + (names.size() <= 4 ? String.join(", ", names)
            : String.join(", ", names.subList(0, 3)) + " and " + (names.size() - 3) + " more");
    }

    /** Things are lists of their facts, and are told by their numbers. */
    private static String data(NetworkPicture picture) {
        NetworkTopology network = picture.network;
        Map<String, Integer> diskNumbers = new HashMap<>();
        List<String> disks = new ArrayList<>();
        List<Object> reaches = all(network.reaches, reach -> {
            List<Integer> led = new ArrayList<>();
            for (String disk : reach.disks) {
                led.add(disk == null ? -1 : diskNumbers.computeIfAbsent(disk, added -> {
                    disks.add(text(disk));
                    return diskNumbers.size();
                }));
            }
            List<Object> facts = list(reach.unit.number, reach.way.number);
            facts.addAll(led.stream().distinct().count() == 1 ? led.subList(0, 1) : led);
            return facts;
        });
        Map<String, Integer> hostNumbers = new HashMap<>();
        network.hosts.forEach(host -> hostNumbers.put(host.name, host.number));
        return new Gson().toJson(Json.object( // which escapes what would end the element
            "fabrics", all(network.fabrics, fabric -> text(fabric.name)),
            "switches", all(network.switches, at -> list(at.fabric.number, at.domain)),
            "arrays", all(network.arrays, array -> list(text(array.node), text(array.product()))),
            "arrayPorts", all(network.arrayPorts, port -> list(
                text(port.wwn), port.array.number, port.at == null ? -1 : port.at.number)),
            "models", all(network.models, model -> list(text(model.name), text(model.firmware), text(model.driver))),
            "units", all(network.units, unit -> list(
                text(unit.identity), text(unit.product), unit.sizeBytes == null ? "" : Units.bytes(unit.sizeBytes))),
            "disks", disks,
            "ways", all(network.ways, way -> way.steps.stream().flatMap(
                step -> list(step.port, step.arrayPort.number, step.isOnline ? 1 : 0).stream())
                .collect(Collectors.toList())),
            "reaches", reaches,
            "hosts", all(network.hosts, host -> list(
                text(host.name), text(host.platform), host.recordedAt,
                all(host.ports, port -> list(text(port.wwn), port.at == null ? -1 : port.at.number, port.adapter,
                                             port.model.number, text(port.state))),
                runs(host), host.mounts.entrySet().stream()
                    .map(each -> list(text(each.getKey()), each.getValue().number)).collect(Collectors.toList()))),
            "groups", all(picture.groups, group -> all(group.hosts, host -> host.number)),
            "findings", all(picture.check.findings, finding -> list(
                finding.severity(), finding.fault.code(), text(finding.subject), text(finding.message()),
                finding.hosts().stream().map(hostNumbers::get).filter(Objects::nonNull)
                    .collect(Collectors.toList())))));
    }

    /** The numbers of the host's reaches: a first one and how many follow it, again and again. Like hosts have few. */
    private static List<Integer> runs(Host host) {
        List<Integer> runs = new ArrayList<>();
        int next = -1;
        for (Reach reach : host.reaches) {
            if (reach.number == next) {
                runs.set(runs.size() - 1, runs.get(runs.size() - 1) + 1);
            } else {
                runs.add(reach.number);
                runs.add(1);
            }
            next = reach.number + 1;
        }
        return runs;
    }

    private static <T> List<Object> all(List<T> things, Function<T, Object> facts) {
        return things.stream().map(facts).collect(Collectors.toList());
    }

    private static List<Object> list(Object... facts) {
        return new ArrayList<>(List.of(facts));
    }

    private static String text(String name) {
        return Page.printable(name);
    }
}
