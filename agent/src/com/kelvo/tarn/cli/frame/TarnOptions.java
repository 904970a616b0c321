package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import java.io.File;
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
            return;
        }
        if (path.isEmpty()) {
            throw new ParameterException(command, "--host: no file named");
        }
        load(path, command);
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

    final boolean csvRaw() {
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
