package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.InquiryCommand;
import com.kelvo.tarn.cli.output.Page;
import java.util.List;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;

/** {@code hba-test}: one call of {@code testHbaLibrary}. */
@Command(name = "hba-test", description = "What the HBA library says of its adapters, line by line, failures included.")
public final class HbaTestCommand extends InquiryCommand {
    @Override
    public Answer ask() {
        List<String> lines = library().hbaTest();
        return Answer.page(lines, out -> show(lines, out)).summarizedAs(out -> show(
            // The adapters, and what failed: all lines that are not details of the one before.
            lines.stream().filter(line -> !line.startsWith(" ")).collect(Collectors.toList()), out));
    }

    private static void show(List<String> lines, Page out) {
        lines.forEach(out::println);
        if (lines.isEmpty()) {
            out.println("no host bus adapters");
        }
    }
}
