package com.kelvo.tarn.cli;

import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

@Command(name = "processors", description = "The processors.")
final class ProcessorsCommand extends Listing<Integer, SolarisProcessorData> {
    @Parameters(arity = "0..1", paramLabel = "ID", description = "Only this one.")
    private Integer id;

    ProcessorsCommand() {
        super("processor");
    }

    @Override
    protected Integer wanted() {
        return id;
    }

    @Override
    protected List<SolarisProcessorData> all() {
        return new SolarisNativeMethod().enumerateProcessors();
    }

    @Override
    protected SolarisProcessorData one(Integer processor) {
        return new SolarisNativeMethod().getProcessor(processor);
    }

    @Override
    protected Table<SolarisProcessorData> table() {
        return new Table<SolarisProcessorData>()
            .number("ID", SolarisProcessorData::processorId)
            .text("Type", SolarisProcessorData::processorType)
            .number("MHz", SolarisProcessorData::clockMHz)
            .text("State", data -> data.state().equals("online") ? "online" : "!! " + data.state().toUpperCase());
    }
}
