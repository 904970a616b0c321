package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import java.util.LinkedHashMap;
import java.util.Map;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Model.ArgSpec;

/** {@code report}: the answer of each command that is a section. */
@Command(name = "report", description = "Everything that needs no argument, section by section.",
         footer = "With --json the result has one member for each section, named after its command. That of a "
             + "section that raised an exception is {\"exception\": {\"class\": ..., \"message\": ...}}; the others "
             + "are there all the same, and the exit status is 1.")
public final class ReportCommand extends Inquiry<Map<String, Answer>> {
    @Mixin
    private HbaOptions options;

    @Mixin
    private ArrayOption array;

    @Override
    protected Map<String, Answer> ask() {
        Map<String, Answer> answers = new LinkedHashMap<>();
        spec().parent().subcommands().forEach((name, command) -> {
            if (!(command.getCommand() instanceof Inquiry)) {
                return;
            }
            Inquiry<?> section = command.getCommand();
            boolean complete = command.getCommandSpec().args().stream().noneMatch(ArgSpec::required);
            if (section instanceof HbaCommand) {
                ((HbaCommand) section).choose(options);
            } else if (section instanceof ArrayCommand && !array.arguments().isEmpty()) {
                ((ArrayCommand) section).choose(array.arguments());
                complete = true;
            }
            if (complete && section.isSection()) {
                answers.put(name, section.answer());
            }
        });
        return answers;
    }

    @Override
    protected void show(Map<String, Answer> sections, Page out) {
        sections.forEach((name, answer) -> {
            String line = "─".repeat(Math.max(0, Math.min(out.width(), 80) - name.length() - 4));
            out.println("── " + name + " " + line);
            answer.summary.accept(out);
            out.println();
        });
    }

    @Override
    protected Object result(Map<String, Answer> sections) {
        Map<String, Object> results = new LinkedHashMap<>();
        sections.forEach((name, answer) -> results.put(
            name, answer.thrown == null ? answer.result : Map.of("exception", answer.thrown)));
        return results;
    }

    @Override
    protected int exitStatus(Map<String, Answer> sections) {
        return sections.values().stream().mapToInt(answer -> answer.status).max().orElse(0);
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
