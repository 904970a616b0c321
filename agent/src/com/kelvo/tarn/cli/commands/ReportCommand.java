package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.ArrayOption;
import com.kelvo.tarn.cli.frame.HbaOptions;
import com.kelvo.tarn.cli.frame.Inquiry;
import com.kelvo.tarn.cli.frame.InquiryCommand;
import com.kelvo.tarn.cli.output.Page;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;

/** {@code report}: the answer of each command that is a section. */
@Command(name = "report", description = "Everything that needs no argument, section by section.",
         footer = "With --json the result has one member for each section, named after its command. That of a "
             + "section that raised an exception is {\"exception\": {\"class\": ..., \"message\": ...}}; the others "
             + "are there all the same, and the exit status is 1.")
public final class ReportCommand extends InquiryCommand {
    /** The commands that are its sections, in order: all that join no others' answers and need no argument. */
    public static final List<String> SECTIONS = List.of(
        "computer-system", "operating-system", "logical-disks", "processors", "cpu", "disk-io", "disks", "partitions",
        "hba", "hba-test", "array", "build-date");

    @Mixin
    private HbaOptions options;

    @Mixin
    private ArrayOption array;

    @Override
    public Answer ask() {
        tarn().hba().and(options);
        Map<String, Answer> answers = new LinkedHashMap<>();
        for (String name : SECTIONS) {
            if (!name.equals("array")) {
                Inquiry section = spec().parent().subcommands().get(name).getCommand();
                answers.put(name, section.answer());
            } else if (!array.arguments().isEmpty()) {
                Inquiry section = () -> ArrayCommand.answer(library(), array.arguments());
                answers.put(name, section.answer());
            }
        }
        return Answer.page(result(answers), out -> show(answers, out))
            .withStatus(answers.values().stream().mapToInt(Answer::status).max().orElse(0));
    }

    private static void show(Map<String, Answer> sections, Page out) {
        sections.forEach((name, answer) -> {
            String line = "─".repeat(Math.max(0, Math.min(out.width(), 80) - name.length() - 4));
            out.println("── " + name + " " + line);
            answer.summarize(out);
            out.println();
        });
    }

    private static Object result(Map<String, Answer> sections) {
        Map<String, Object> results = new LinkedHashMap<>();
        sections.forEach((name, answer) -> results.put(
            name, answer.thrown == null ? answer.result : Map.of("exception", answer.thrown)));
        return results;
    }
}
