package com.kelvo.tarn.cli;

import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import java.io.PrintWriter;
import picocli.CommandLine.Command;

@Command(name = "computer-system", description = "The host as a computer system.")
final class ComputerSystemCommand extends Inquiry<SolarisComputerSystem> {
    @Override
    protected SolarisComputerSystem ask() {
        return new SolarisNativeMethod().getComputerSystem();
    }

    @Override
    protected void show(SolarisComputerSystem system, PrintWriter out) {
        Table.labels(out, "Host name", system.hostName(), "System", system.systemName(), "Version", system.version(),
                     "Platform", system.platform(), "Serial number", system.serialNumber());
    }
}
