package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.answers.IgnoredFindings;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.Path;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Spec;

/** What any check finds, and what it keeps to itself. */
public final class FindingOptions {
    /** The states that a check comes to, by their exit status, as monitoring plugins have it. */
    public static final List<String> STATES = List.of("OK", "WARNING", "CRITICAL", "UNKNOWN");
    /** The exit status for bad usage and for what could not be asked. */
    public static final int UNKNOWN = 3;

    @Spec(Spec.Target.MIXEE)
    private CommandSpec spec;

    @Option(names = "--max-age", paramLabel = "DURATION", description = "How old a recording may be: 90m, 36h, "
            + "7d.")
    private String maxAge;

    @Option(names = "--ignore", paramLabel = "CODE[:SUBJECT]", description = "Find no such thing; * stands for any "
            + "text. May be repeated.")
    private List<String> ignored = new ArrayList<>();

    @Option(names = "--ignore-file", paramLabel = "FILE", description = "The same, a line each, with comments after #.")
    private String ignoreFile;

    /** {@return how old a recording may be; null: as old as it likes} */
    public Duration maxAge() {
        return maxAge == null ? null : Durations.of(spec, "--max-age", maxAge);
    }

    /**
     * Silences what the options name.
     *
     * @param findings those of the check
     */
    public void addTo(IgnoredFindings findings) {
        List<String> patterns = new ArrayList<>(ignored);
        if (ignoreFile != null) {
            try {
                Files.readAllLines(Path.of(ignoreFile)).stream()
                    .map(line -> line.replaceFirst("(^|\\s)#.*", "").strip())
                    .filter(line -> !line.isEmpty()).forEach(patterns::add);
            } catch (IOException | InvalidPathException unreadable) {
                throw refusal("--ignore-file: " + ignoreFile + " cannot be read");
            }
        }
        patterns.stream().filter(pattern -> !findings.add(pattern)).findFirst().ifPresent(pattern -> {
            throw refusal("--ignore: '" + pattern + "' begins with no code of a finding");
        });
    }

    private ParameterException refusal(String message) {
        return new ParameterException(spec.commandLine(), message);
    }
}
