package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.providers.solaris.SolarisOperatingSystemProvider.SolarisOperatingSystem;
import java.util.List;
import java.util.Locale;
import java.util.function.Function;
import picocli.CommandLine.Command;

/** {@code operating-system}: one call of {@code getOperatingSystem}. */
@Command(name = "operating-system",
         description = "The operating system with its memory and swap, sampled over a second.")
public final class OperatingSystemCommand extends TableCommand {
    @Override
    public Answer ask() {
        SolarisOperatingSystem system = library().operatingSystem();
        return Answer.table(system, () -> table(system)).shownAs(table(system)::printUpright);
    }

    private static Table<?> table(SolarisOperatingSystem system) {
        Table<SolarisOperatingSystem> table = new Table<>(List.of(system))
            .text("Name", SolarisOperatingSystem::name)
            .text("Host name", SolarisOperatingSystem::hostName)
            .text("Version", SolarisOperatingSystem::version);
        size(table, "Memory", SolarisOperatingSystem::totalPhysicalKB, system.totalPhysicalKB());
        size(table, "Free memory", SolarisOperatingSystem::freePhysicalKB, system.totalPhysicalKB());
        size(table, "Swap", SolarisOperatingSystem::totalSwapKB, system.totalSwapKB());
        size(table, "Free swap", SolarisOperatingSystem::freeSwapKB, system.totalSwapKB());
        return table;
    }

    private static void size(Table<SolarisOperatingSystem> table, String heading,
                             Function<SolarisOperatingSystem, Long> kilobytes, long total) {
        table.number(heading, kilobytes, system -> size(kilobytes.apply(system), total));
    }

    /** Nothing of nothing is what the library says when the system did not tell. */
    private static String size(long kilobytes, long total) {
        return kilobytes == 0 && total == 0 ? "unknown"
            : String.format(Locale.ROOT, "%d KB (%s)", kilobytes, Units.bytes(kilobytes * 1024.0));
    }
}
