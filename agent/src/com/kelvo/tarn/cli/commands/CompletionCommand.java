package com.kelvo.tarn.cli.commands;

import java.util.stream.Collectors;
import picocli.AutoComplete;
import picocli.CommandLine;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Spec;

/** {@code completion}: what picocli makes of the commands' options. */
@Command(name = "completion", description = "The completion of this command line, for bash.",
         footer = "To use it: source <(tarn completion)")
public final class CompletionCommand implements Runnable {
    /** What only the host knows, its disks and mount points, is asked of it. */
    private static final String NAMES = String.join(
        "\n", "", "_complete_{{name}}_names() {", "    local host=() asked=() word=${COMP_WORDS[COMP_CWORD]} i",
        "    for ((i = 1; i < COMP_CWORD; i++)); do",
        "        case ${COMP_WORDS[i]} in", "        --host) host=(--host \"${COMP_WORDS[i + 1]}\") ;;",
        "        help) COMPREPLY=($(compgen -W '{{commands}}' -- \"$word\")); return ;;",
        "        disk|paths) asked=(disks logical-disks) ;;", "        disks|disk-io) asked=(disks) ;;",
        "        logical-disks) asked=(logical-disks) ;;", "        esac", "    done",
        "    if [[ ${#asked[@]} -eq 0 || $word == -* || ${COMP_WORDS[COMP_CWORD - 1]} == --* ]]; then",
        "        _complete_{{name}} \"$@\"", "        return", "    fi",
        "    COMPREPLY=($(compgen -W \"$(for i in \"${asked[@]}\"; do",
        "        \"${COMP_WORDS[0]}\" \"${host[@]}\" --csv \"$i\" 2>/dev/null | tail -n +2 | cut -d, -f1",
        "    done | tr -d '\\r')\" -- \"$word\"))", "}",
        "complete -F _complete_{{name}}_names -o default {{name}}", "");

    @Spec
    private CommandSpec spec;

    @Override
    public void run() {
        String name = spec.root().name();
        String commands = spec.root().subcommands().values().stream().map(CommandLine::getCommandSpec)
            .filter(command -> !command.usageMessage().hidden()).map(CommandSpec::name).distinct()
            .collect(Collectors.joining(" "));
        spec.commandLine().getOut().print(AutoComplete.bash(name, spec.root().commandLine())
            + NAMES.replace("{{name}}", name).replace("{{commands}}", commands));
    }
}
