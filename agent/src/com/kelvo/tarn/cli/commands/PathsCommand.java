package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.cli.output.Page;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

@Command(name = "paths", description = "The logical units behind Fibre Channel, each with all the ways to it.")
public final class PathsCommand extends Inquiry<Paths> {
    @Mixin
    private HbaOptions options;

    @Override
    protected Paths ask() {
        return new Paths(new Fabric(options.or(tarn().hba()).fill()));
    }

    @Override
    protected Object result(Paths paths) {
        return paths.units;
    }

    @Override
    protected void show(Paths paths, Page out) {
        for (LogicalUnit unit : paths.units) {
            out.println(unit.place());
        }
    }

    @Override
    protected boolean takesHbaOptions() {
        return true;
    }

    @Override
    protected boolean isSection() {
        return false;
    }
}
