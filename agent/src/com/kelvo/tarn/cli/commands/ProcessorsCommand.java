package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code processors}: {@code enumerateProcessors}, or {@code getProcessor} for one. */
@Command(name = "processors", description = "The processors.")
public final class ProcessorsCommand extends TableCommand {
    @Parameters(arity = "0..1", paramLabel = "ID", description = "Only this one.")
    private Integer id;

    @Override
    public Answer ask() {
        return Answer.listing("processor", id, library()::processors, library()::processor, ProcessorsCommand::table);
    }

    private static Table<?> table(List<SolarisProcessorData> answer) {
        return new Table<>(answer)
            .number("ID", SolarisProcessorData::processorId)
            .text("Type", SolarisProcessorData::processorType)
            .number("MHz", SolarisProcessorData::clockMHz)
            .text("State", SolarisProcessorData::state);
    }
}
