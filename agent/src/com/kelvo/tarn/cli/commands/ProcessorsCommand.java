package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code processors}: {@code enumerateProcessors}, or {@code getProcessor} for one. */
@Command(name = "processors", description = "The processors.")
public final class ProcessorsCommand extends Listing<Integer, SolarisProcessorData> {
    @Parameters(arity = "0..1", paramLabel = "ID", description = "Only this one.")
    private Integer id;

    /** For all, or for the one that is named. */
    public ProcessorsCommand() {
        super("processor");
    }

    @Override
    protected Integer wanted() {
        return id;
    }

    @Override
    protected List<SolarisProcessorData> all() {
        return library().processors();
    }

    @Override
    protected SolarisProcessorData one(Integer processor) {
        return new SolarisNativeMethod().getProcessor(processor);
    }

    @Override
    protected Table<?> table(List<SolarisProcessorData> answer) {
        return new Table<>(answer)
            .number("ID", SolarisProcessorData::processorId)
            .text("Type", SolarisProcessorData::processorType)
            .number("MHz", SolarisProcessorData::clockMHz)
            .text("State", SolarisProcessorData::state);
    }
}
