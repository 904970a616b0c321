package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.san.NetworkTopology;
import com.kelvo.tarn.cli.san.NetworkTopology.ArrayPort;
import com.kelvo.tarn.cli.san.NetworkTopology.Host;
import com.kelvo.tarn.cli.san.NetworkTopology.Port;
import com.kelvo.tarn.cli.san.NetworkTopology.Reach;
import com.kelvo.tarn.cli.san.NetworkTopology.Step;
import com.kelvo.tarn.cli.san.NetworkTopology.Switch;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;

/**
 * Hosts that look alike: they have as many ports of the same models in the same switches, and reach the same ports of
 * arrays through them.
 */
final class HostGroup {
    /** Paths of all its hosts from a switch to a port of an array. */
    static final class Bundle {
        /** Where the hosts are plugged in; null for a fabric without a name. */
        final Switch near;
        final ArrayPort far;
        long paths;
        long online;

        private Bundle(Switch near, ArrayPort far) {
            this.near = near;
            this.far = far;
        }
    }

    private static final Pattern NUMBERED = Pattern.compile("(.*?)([0-9]{0,9})", Pattern.DOTALL);
    private static final Comparator<Host> ORDER = Comparator.comparing((Host host) -> numbered(host.name).group(1))
        .thenComparing(host -> number(host.name)).thenComparing(host -> host.name);

    /** Its place among the groups. */
    final int number;
    /** In the order of their names, by number. */
    final List<Host> hosts;
    /** All their paths. */
    final List<Bundle> bundles;

    private HostGroup(int number, List<Host> hosts) {
        this.number = number;
        this.hosts = hosts;
        bundles = bundles(hosts);
    }

    /** The groups of all hosts, by the name of the first. */
    static List<HostGroup> of(NetworkTopology network) {
        Map<List<Object>, List<Host>> alike = new LinkedHashMap<>();
        List<Host> hosts = new ArrayList<>(network.hosts);
        hosts.sort(ORDER);
        for (Host host : hosts) {
            alike.computeIfAbsent(looks(host), added -> new ArrayList<>()).add(host);
        }
        List<HostGroup> groups = new ArrayList<>();
        alike.values().forEach(same -> groups.add(new HostGroup(groups.size(), same)));
        return groups;
    }

    private static List<Object> looks(Host host) {
        List<List<Object>> ports = new ArrayList<>();
        for (Port port : host.ports) {
            ports.add(Arrays.asList(port.model.name, port.at == null ? -1 : port.at.number, port.state));
        }
        ports.sort(Comparator.comparing(Object::toString));
        Set<List<Object>> reached = new HashSet<>();
        for (Reach reach : host.reaches) {
            for (Step step : reach.way.steps) {
                reached.add(Arrays.asList(host.ports.get(step.port).at, step.arrayPort, step.isOnline));
            }
        }
        return List.of(ports, reached);
    }

    private static List<Bundle> bundles(List<Host> hosts) {
        Map<List<Object>, Bundle> bundles = new LinkedHashMap<>();
        for (Host host : hosts) {
            for (Reach reach : host.reaches) {
                for (Step step : reach.way.steps) {
                    Switch near = host.ports.get(step.port).at;
                    Bundle bundle = bundles.computeIfAbsent(
                        Arrays.asList(near, step.arrayPort), added -> new Bundle(near, step.arrayPort));
                    bundle.paths++;
                    bundle.online += step.isOnline ? 1 : 0;
                }
            }
        }
        return new ArrayList<>(bundles.values());
    }

    /** Where its hosts are plugged in, whether or not they have paths there. */
    Set<Switch> switches() {
        return hosts.get(0).ports.stream().map(port -> port.at).filter(Objects::nonNull).collect(Collectors.toSet());
    }

    /** The names of its hosts, with those that differ in their numbers only drawn together: "db1–6, web3". */
    String names() {
        Map<String, List<Host>> named = new LinkedHashMap<>();
        for (Host host : hosts) {
            named.computeIfAbsent(numbered(host.name).group(1), added -> new ArrayList<>()).add(host);
        }
        List<String> names = new ArrayList<>();
        named.forEach((name, same) -> {
            List<String> runs = new ArrayList<>();
            for (int from = 0, to; from < same.size(); from = to) {
                to = from + 1;
                while (to < same.size() && number(same.get(to).name) == number(same.get(to - 1).name) + 1) {
                    to++;
                }
                String first = same.get(from).name.substring(name.length());
                runs.add(to - from == 1 ? first : first + "–" + same.get(to - 1).name.substring(name.length()));
            }
            names.add(name + String.join(",", runs));
        });
        return String.join(", ", names);
    }

    /** How many ports of which models: "2 × FX-2302". */
    String ports() {
        Map<String, Integer> counts = new LinkedHashMap<>();
        hosts.get(0).ports.forEach(port -> counts.merge(port.model.name, 1, Integer::sum));
        return counts.entrySet().stream().map(each -> each.getValue() + " × " + each.getKey())
            .collect(Collectors.joining(", "));
    }

    private static Matcher numbered(String name) {
        Matcher matcher = NUMBERED.matcher(name);
        matcher.matches();
        return matcher;
    }

    private static long number(String name) {
        String digits = numbered(name).group(2);
        return digits.isEmpty() ? -1 : Long.parseLong(digits);
    }
}
