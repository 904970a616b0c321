package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import java.util.List;
import java.util.function.Function;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code cpu}: {@code enumerateCpuUtilizationInfo}, or {@code getCpuUtilizationInfo} for one. */
@Command(name = "cpu", description = "The clock ticks that each processor spent, since boot.",
         footer = "The counters have 32 bits; --json gives them as the library does, negative from 2^31 on.")
public final class CpuCommand extends TableCommand {
    @Parameters(arity = "0..1", paramLabel = "ID", description = "Only this processor.")
    private Integer id;

    @Override
    public Answer ask() {
        return Answer.listing("processor", id, library()::cpu, library()::cpu, CpuCommand::table);
    }

    private static Table<?> table(List<SolarisCpuUtilizationData> answer) {
        Table<SolarisCpuUtilizationData> table = new Table<>(answer)
            .number("CPU", SolarisCpuUtilizationData::cpuId);
        ticks(table, "User", SolarisCpuUtilizationData::userTicks);
        ticks(table, "Kernel", SolarisCpuUtilizationData::kernelTicks);
        ticks(table, "Wait", SolarisCpuUtilizationData::waitTicks);
        ticks(table, "Idle", SolarisCpuUtilizationData::idleTicks);
        return table;
    }

    private static void ticks(Table<SolarisCpuUtilizationData> table, String heading,
                              Function<SolarisCpuUtilizationData, Long> ticks) {
        table.number(heading, data -> ticks.apply(data) == -1 ? null : unsigned(ticks.apply(data)));
        table.reading(data -> Units.percent(
            unsigned(ticks.apply(data)),
            unsigned(data.userTicks()) + unsigned(data.kernelTicks()) + unsigned(data.waitTicks())
                + unsigned(data.idleTicks())));
    }

    /** What the kernel counted, the sign undone. */
    private static long unsigned(long ticks) {
        return Counter.of32(ticks).value().longValue();
    }
}
