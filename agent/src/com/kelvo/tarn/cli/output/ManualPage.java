package com.kelvo.tarn.cli.output;

import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import picocli.CommandLine.Help;
import picocli.CommandLine.Model.ArgSpec;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Model.PositionalParamSpec;

/** A manual page in roff, made of what the commands' help says. */
public final class ManualPage {
    /** What no help says. */
    private static final List<String> MORE = List.of(
        ".SH EXAMPLES", ".nf", "tarn check --host rill.json --baseline rill-well.json", "tarn disk /oracle",
        "tarn map --host rill.json --baseline rill-well.json --output rill.html",
        "tarn compare rill-before.json rill-now.json", "tarn metrics --output /var/lib/node-exporter/tarn.prom",
        "source <(tarn completion)", ".fi", ".SH FILES", ".TP", ".I /usr/share/doc/tarn/examples",
        "An agent that embeds the library, and alert rules for Prometheus.", ".TP", ".I /usr/share/doc/tarn",
        "What each answer means, and what to do with it.", ".SH SEE ALSO",
        ".BR tarn\\-record (1),", ".BR dot (1),", ".BR promtool (1)");

    private final List<String> lines = new ArrayList<>();

    private ManualPage() {
    }

    /**
     * {@return the page of a command with all its subcommands, apart from hidden ones}
     *
     * @param root the command
     */
    public static String of(CommandSpec root) {
        ManualPage page = new ManualPage();
        page.write(root);
        return page.lines.stream().collect(Collectors.joining("\n", "", "\n"));
    }

    private void write(CommandSpec root) {
        String release = root.version()[0].replaceFirst("\\+.*", ""); // without the commit
        lines.add(".TH " + root.name().toUpperCase(Locale.ROOT) + " 1 \"\" \"" + escape(release) + '"');
        lines.add(".SH NAME");
        lines.add(escape(root.name() + " - " + text(root.usageMessage().description())));
        lines.add(".SH SYNOPSIS");
        lines.add(".B " + escape(root.name()));
        lines.add(escape("[OPTION]... COMMAND [ARGUMENT]..."));
        lines.add(".SH OPTIONS");
        root.options().forEach(this::writeArgument);
        lines.add(".SH COMMANDS");
        root.subcommands().values().stream().map(command -> command.getCommandSpec())
            .filter(command -> !command.usageMessage().hidden()).forEach(command -> writeCommand("", command));
        for (String paragraph : root.usageMessage().footer()) {
            int colon = paragraph.indexOf(':');
            if (colon > 0) {
                lines.add(".SH " + escape(paragraph.substring(0, colon).toUpperCase(Locale.ROOT)));
                lines.add(escape(paragraph.substring(colon + 1).strip()));
            }
        }
        MORE.forEach(line -> lines.add(line.startsWith(".") ? line : escape(line)));
    }

    /** Those below it follow it, after its name. */
    private void writeCommand(String above, CommandSpec command) {
        List<ArgSpec> own = Stream.concat(command.options().stream().filter(option -> !option.inherited()),
                                          command.positionalParameters().stream()).collect(Collectors.toList());
        String name = above + command.name();
        lines.add(".SS " + escape(Stream.concat(Stream.of(name), own.stream().map(ManualPage::usage))
                                      .collect(Collectors.joining(" "))));
        lines.add(escape(text(command.usageMessage().description())));
        own.stream().filter(argument -> !isExplainedBefore(argument, command.root())).forEach(this::writeArgument);
        if (command.usageMessage().footer().length > 0) {
            lines.add(".PP");
            lines.add(escape(text(command.usageMessage().footer())));
        }
        command.subcommands().values().forEach(below -> writeCommand(name + " ", below.getCommandSpec()));
    }

    private static boolean isExplainedBefore(ArgSpec argument, CommandSpec root) {
        return argument instanceof OptionSpec && root.findOption(((OptionSpec) argument).longestName()) != null;
    }

    private void writeArgument(ArgSpec argument) {
        lines.add(".TP");
        lines.add(".B " + escape(argument instanceof OptionSpec
            ? Stream.of(((OptionSpec) argument).names()).map(name -> name + label(argument))
                  .collect(Collectors.joining(", "))
            : argument.paramLabel()));
        lines.add(escape(text(argument.description())));
    }

    private static String usage(ArgSpec argument) {
        String words = argument instanceof PositionalParamSpec
            ? argument.paramLabel() + (argument.arity().max() > 1 ? "..." : "")
            : ((OptionSpec) argument).longestName() + label(argument);
        return argument.required() ? words : "[" + words + "]";
    }

    private static String label(ArgSpec option) {
        return option.arity().max() == 0 ? "" : " " + option.paramLabel();
    }

    /** Descriptions are formats, of which "%%" is a per cent sign. */
    private static String text(String[] lines) {
        return Help.Ansi.OFF.string(String.format(Locale.ROOT, String.join(" ", lines)));
    }

    /** Backslashes and hyphens mean themselves, and nothing at the start of a line is a request. */
    private static String escape(String text) {
        String escaped = text.replace("\\", "\\e").replace("-", "\\-").replace("\"", "\\(dq");
        return escaped.startsWith(".") || escaped.startsWith("'") ? "\\&" + escaped : escaped;
    }
}
