package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import java.util.List;
import picocli.CommandLine.Command;

/** {@code computer-system}: one call of {@code getComputerSystem}. */
@Command(name = "computer-system", description = "The host as a computer system.")
public final class ComputerSystemCommand extends TableCommand {
    @Override
    public Answer ask() {
        SolarisComputerSystem system = library().computerSystem();
        return Answer.table(system, () -> table(system)).shownAs(table(system)::printUpright);
    }

    private static Table<?> table(SolarisComputerSystem system) {
        return new Table<>(List.of(system))
            .text("Host name", SolarisComputerSystem::hostName)
            .text("System", SolarisComputerSystem::systemName)
            .text("Version", SolarisComputerSystem::version)
            .text("Platform", SolarisComputerSystem::platform)
            .text("Serial number", SolarisComputerSystem::serialNumber);
    }
}
