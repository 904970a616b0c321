package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.hba.HbaCache;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;

/** {@code hba-test}: one call of {@code testHbaLibrary}. */
@Command(name = "hba-test", description = "What the HBA library says of its adapters, line by line, failures included.")
public final class HbaTestCommand extends Inquiry<List<String>> {
    @Override
    protected List<String> ask() {
        List<String> lines = new ArrayList<>();
        new HbaCache(false, false).testHbaLibrary(lines);
        return lines;
    }

    @Override
    protected void show(List<String> lines, Page out) {
        lines.forEach(out::println);
        if (lines.isEmpty()) {
            out.println("no host bus adapters");
        }
    }

    /** The adapters, and what failed: all lines that are not details of the one before. */
    @Override
    protected void summarize(List<String> lines, Page out) {
        show(lines.stream().filter(line -> !line.startsWith(" ")).collect(Collectors.toList()), out);
    }
}
