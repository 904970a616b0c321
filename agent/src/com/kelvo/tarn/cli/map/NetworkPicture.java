package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.NetworkFault;
import com.kelvo.tarn.cli.san.NetworkFinding;
import com.kelvo.tarn.cli.san.NetworkTopology;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/** A picture of the storage network of many hosts, in which those that look alike share a box. */
public final class NetworkPicture {
    final NetworkTopology network;
    final List<HostGroup> groups;
    final NetworkCheck check;
    private final String svg;

    /**
     * A picture.
     *
     * @param network what is drawn
     * @param check what is wrong with it
     */
    public NetworkPicture(NetworkTopology network, NetworkCheck check) {
        this.network = network;
        this.check = check;
        groups = HostGroup.of(network);
        svg = NetworkDrawing.of(new NetworkLayout(network, groups), severities());
    }

    /** {@return the drawing, a document of SVG with colours for light and dark} */
    public String svg() {
        int body = svg.indexOf('>') + 1;
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + svg.substring(0, body) + "\n<style>\n" + Palette.css()
            + "</style>" + svg.substring(body);
    }

    /**
     * {@return a page that holds the drawing and all that is needed to ask it}
     *
     * @param origin where the network is known from, and what has drawn it
     */
    public String html(String origin) {
        return NetworkPage.of(this, svg, origin);
    }

    /** By the box, the worst that is found there. What crowds a port of an array is that port's fault, no host's. */
    private Map<Object, String> severities() {
        Map<String, HostGroup> byHost = new HashMap<>();
        groups.forEach(group -> group.hosts.forEach(host -> byHost.put(host.name, group)));
        Map<Object, String> severities = new HashMap<>();
        for (NetworkFinding finding : check.findings) {
            if (finding.fault == NetworkFault.ARRAY_PORT_CROWDED) {
                network.arrayPorts.stream().filter(port -> port.wwn.equals(finding.subject))
                    .forEach(port -> severities.putIfAbsent(port, finding.severity()));
            } else {
                finding.hosts().forEach(host -> severities.putIfAbsent(byHost.get(host), finding.severity()));
            }
        }
        return severities;
    }
}
