package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import java.util.List;
import picocli.CommandLine.Command;

/** {@code computer-system}: one call of {@code getComputerSystem}. */
@Command(name = "computer-system", description = "The host as a computer system.")
public final class ComputerSystemCommand extends TableInquiry<SolarisComputerSystem> {
    @Override
    protected SolarisComputerSystem ask() {
        return new SolarisNativeMethod().getComputerSystem();
    }

    @Override
    protected Table<?> table(SolarisComputerSystem system) {
        return new Table<>(List.of(system))
            .text("Host name", SolarisComputerSystem::hostName)
            .text("System", SolarisComputerSystem::systemName)
            .text("Version", SolarisComputerSystem::version)
            .text("Platform", SolarisComputerSystem::platform)
            .text("Serial number", SolarisComputerSystem::serialNumber);
    }

    @Override
    protected void show(SolarisComputerSystem system, Page out) {
        table(system).printUpright(out);
    }
}
