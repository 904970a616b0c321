package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.san.PortFilter;
import picocli.CommandLine.Option;

/** Which ports of hosts a list is about, the same for all lists. In a pattern * stands for any text. */
final class PortFilterOptions {
    final PortFilter filter = new PortFilter();

    @Option(names = "--name", paramLabel = "HOST", description = "Only hosts of this name; in each of these, * stands "
            + "for any text, ? for any character, and case does not count.")
    private void setHost(String host) {
        filter.host = host;
    }

    @Option(names = "--fabric", paramLabel = "FABRIC", description = "Only through a port of a host in this fabric.")
    private void setFabric(String fabric) {
        filter.fabric = fabric;
    }

    @Option(names = "--model", paramLabel = "MODEL", description = "Only through an adapter of this model.")
    private void setModel(String model) {
        filter.model = model;
    }

    @Option(names = "--firmware", paramLabel = "VERSION", description = "Only through an adapter with this firmware.")
    private void setFirmware(String firmware) {
        filter.firmware = firmware;
    }
}
