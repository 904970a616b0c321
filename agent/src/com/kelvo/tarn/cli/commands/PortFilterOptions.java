package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.san.PortFilter;
import picocli.CommandLine.Option;

/** Which ports of hosts a list is about, the same for all lists. In a pattern * stands for any text. */
final class PortFilterOptions {
    // As fields, which keep their order in the help.

    @Option(names = "--name", paramLabel = "HOST", description = "Only hosts of this name; in each of these, * stands "
            + "for any text, ? for any character, and case does not count.")
    private String host;

    @Option(names = "--fabric", paramLabel = "FABRIC", description = "Only through a port of a host in this fabric.")
    private String fabric;

    @Option(names = "--model", paramLabel = "MODEL", description = "Only through an adapter of this model.")
    private String model;

    @Option(names = "--firmware", paramLabel = "VERSION", description = "Only through an adapter with this firmware.")
    private String firmware;

    /** What the options mean. */
    PortFilter filter() {
        PortFilter filter = new PortFilter();
        filter.host = host;
        filter.fabric = fabric;
        filter.model = model;
        filter.firmware = firmware;
        return filter;
    }
}
