package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.PortWords;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.san.ListedArrayPort;
import com.kelvo.tarn.cli.san.ListedPort;
import com.kelvo.tarn.cli.san.Store;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;

/** {@code san ports}: each {@link ListedPort}, or each {@link ListedArrayPort}. */
@Command(name = "ports", description = "The ports of the hosts of the storage network, or those of its arrays.",
         footer = "A switch is a domain of a fabric. Array ports are those through which units are reached; hosts are "
             + "those that have discovered them, initiators these hosts' ports that have.")
public final class SanPortsCommand extends StoreInquiryCommand {
    @Mixin
    private PortFilterOptions ports;

    @Option(names = "--array", arity = "0..1", paramLabel = "NODE", fallbackValue = "*", description = "The ports of "
            + "arrays instead; only those of a node of this name.")
    private String array;

    @Option(names = "--state", paramLabel = "STATE", description = "Only ports in this state, such as online or \"link "
            + "down\".")
    private String state;

    @Override
    Answer ask(Store store) {
        return array == null ? hostPorts(ListedPort.of(store, ports.filter(), state))
            : arrayPorts(ListedArrayPort.of(store, ports.filter(), array, state));
    }

    private static Answer hostPorts(List<ListedPort> found) {
        return Answer.listing("port", null, () -> found, null, rows -> new Table<>(rows)
            .text("Host", row -> row.host).exact("Adapter", row -> row.adapter).exact("Port", row -> row.port)
            .text("WWN", row -> row.wwn)
            .text("State", row -> row.state,
                  row -> (row.state.equals(PortWords.ONLINE) ? "" : Page.TROUBLE) + row.state)
            .number("Speed", row -> row.speed, row -> row.speed == null ? null : PortWords.speed(row.speed))
            .text("Fabric", row -> row.fabric).number("Switch", row -> known(row.domain))
            .text("Model", row -> row.model).text("Firmware", row -> row.firmware).text("Driver", row -> row.driver)
            .text("Address", row -> row.fcAddress));
    }

    private static Answer arrayPorts(List<ListedArrayPort> found) {
        return Answer.listing("array port", null, () -> found, null, rows -> new Table<>(rows)
            .text("Fabric", row -> row.fabric).number("Switch", row -> known(row.domain))
            .text("Port", row -> row.wwn).text("Node", row -> row.node).number("Hosts", row -> row.hosts)
            .number("Online", row -> row.hostsOnline,
                    row -> (row.hostsOnline < row.hosts ? Page.TROUBLE : "") + row.hostsOnline)
            .number("Initiators", row -> row.initiators).text("Address", row -> row.fcAddress));
    }

    private static Integer known(int domain) {
        return domain == 0 ? null : (Integer) domain;
    }
}
