package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import java.io.File;
import java.util.HashSet;
import java.util.Set;
import java.util.function.Supplier;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ScopeType;
import picocli.CommandLine;

/** The options that go with every command, before it or after it. */
public abstract class TarnOptions {
    @Option(names = "--host", paramLabel = "FILE", scope = ScopeType.INHERIT,
            description = "The host description that answers. Without it, the one that the environment variable "
                + "TARN_HOST names; without that, the built-in one.")
    private File host;

    @Option(names = "--json", scope = ScopeType.INHERIT,
            description = "Print one JSON document with the members result, log and exception.")
    private boolean json;

    @Option(names = "--csv", scope = ScopeType.INHERIT,
            description = "Print the table as comma-separated values, complete and exact.")
    private boolean csv;

    @Option(names = "--csv-raw", scope = ScopeType.INHERIT,
            description = "The same with each cell as it is: what spreadsheets take for a formula gets no apostrophe, "
                + "and control characters are not escaped.")
    private boolean csvRaw;

    @Option(names = {"-h", "--help"}, usageHelp = true, scope = ScopeType.INHERIT, description = "Show this help.")
    private boolean help;

    @Mixin
    private HbaOptions hba;

    private final LibraryLog log = new LibraryLog();
    private Library library;

    /**
     * Lets the host that was asked for answer.
     *
     * @param command the one that a complaint is about
     */
    public final void chooseHost(CommandLine command) {
        String path = host != null ? host.getPath() : System.getenv().getOrDefault("TARN_HOST", "");
        if (host == null && path.isEmpty()) {
            if (isBuiltInHost()) {
                command.getErr().println(
                    "tarn: the built-in example rill answers; --host FILE or TARN_HOST names another");
            }
            return;
        }
        if (path.isEmpty()) {
            throw new ParameterException(command, "--host: no file named");
        }
        load(path, command);
    }

    /** {@return whether the built-in example answers, since nobody named a host where none is at hand} */
    public final boolean isBuiltInHost() {
        return host == null && System.getenv().getOrDefault("TARN_HOST", "").isEmpty()
            && isReplayed();
    }

    /** {@return whether a description answers; on Solaris the host itself does} */
    public final boolean isReplayed() {
        return !System.getProperty("os.name").equals("SunOS");
    }

    /**
     * Refuses what does not go with a command or with itself, whatever the command is.
     *
     * @param command the one that was given
     * @param hasTable whether its answer is a table, for programs too
     */
    public final void refuseUnsuitable(CommandLine command, boolean hasTable) {
        refuseRepeated(command);
        String unsuitable = hba.any() && command.getCommandSpec().findOption(HbaOptions.LEADVILLE) == null
            ? "The options for device names go with hba, paths, map and report"
            : csv() && !hasTable ? "--csv goes with the commands that print one table"
            : csv() && json ? "--csv and --json do not go together" : null;
        if (unsuitable != null) {
            throw new ParameterException(command, unsuitable);
        }
    }

    /**
     * Refuses what was given before the command and after it.
     *
     * @param command the one that was given
     */
    public final void refuseRepeated(CommandLine command) {
        Set<String> before = new HashSet<>();
        for (CommandLine above = command.getParent(); above != null; above = above.getParent()) {
            above.getParseResult().matchedOptions().forEach(option -> before.add(option.longestName()));
        }
        command.getParseResult().matchedOptions().stream().map(OptionSpec::longestName).filter(before::contains)
            .findFirst().ifPresent(name -> {
                throw new ParameterException(command, "option '" + name + "' should be specified only once");
            });
    }

    /**
     * {@return what another host answers, whose log lines are not kept} That host answers from then on.
     *
     * @param <T> the answer
     * @param path its description
     * @param command the one that a complaint is about
     * @param question what is asked
     */
    public final <T> T at(String path, CommandLine command, Supplier<T> question) {
        load(path, command);
        return log.unheard(question);
    }

    /**
     * Lets the host of a description answer.
     *
     * @param path the description
     * @param command the one that a complaint is about
     */
    public final void load(String path, CommandLine command) {
        try {
            library().load(path);
        } catch (IllegalArgumentException unreadable) {
            throw new ParameterException(command, unreadable.getMessage(), unreadable);
        }
    }

    /** {@return the library; it is loaded when it is first asked for} */
    public final Library library() {
        if (library == null) {
            library = new Library(log);
        }
        return library;
    }

    /** {@return whether the answer is to be a JSON document} */
    public final boolean json() {
        return json;
    }

    /** {@return whether the answer is to be comma-separated values} */
    public final boolean csv() {
        return csv || csvRaw;
    }

    /** {@return whether cells of comma-separated values are to be as they are} */
    public final boolean csvRaw() {
        return csvRaw;
    }

    /** {@return the description that was named on the command line, or null} */
    public final File host() {
        return host;
    }

    /** {@return the choices for host bus adapters that were made before the command} */
    public final HbaOptions hba() {
        return hba;
    }

    final LibraryLog log() {
        return log;
    }
}
