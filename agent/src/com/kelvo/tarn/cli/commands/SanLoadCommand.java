package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Progress;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.san.Load;
import java.io.File;
import java.nio.file.Path;
import java.util.List;
import java.util.Locale;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

/** {@code san load}: a {@link Load}. */
@Command(name = "load", description = "Put what descriptions of hosts tell into the store, which is made where there "
             + "is none.",
         footer = "A recording is told apart by the host's name and the time that it was made at; one that does not "
             + "say has that of its file. The same again changes nothing; a later one becomes the host's present, "
             + "earlier ones are its history. Exit status: 0 done; 1 a file could not be used, which is told in a "
             + "line; 2 bad usage, or a store that cannot be used.")
public final class SanLoadCommand extends StoreCommand {
    @Parameters(arity = "1..*", paramLabel = "FILE|FOLDER", description = "Descriptions, and folders in which all "
            + ".json and .json.gz are such, however deep.")
    private List<File> files;

    @Option(names = "--keep", paramLabel = "N", description = "Keep the latest N recordings of each host; without it, "
            + "all.")
    private Integer keep;

    @Override
    Answer askStore() {
        if (keep != null && keep < 1) {
            throw refusal("--keep: '" + keep + "' is not 1 or more");
        }
        if (files.contains(new File(""))) { // which would be the current folder
            throw refusal("FILE|FOLDER: '' names none");
        }
        List<Path> named = files.stream().map(File::toPath).collect(Collectors.toList());
        Progress progress = new Progress(spec().commandLine().getErr());
        if (progress.isSeen()) {
            progress.expect(Load.count(named));
        }
        long start = System.nanoTime();
        Load load;
        try {
            load = Load.into(database(), named, keep == null ? 0 : keep, observer(progress));
        } finally {
            progress.erase();
        }
        double seconds = (System.nanoTime() - start) / 1e9;
        Object result = Json.object("loaded", load.loaded(), "unchanged", load.unchanged(), "refused", load.refused(),
                                    "seconds", Math.round(seconds * 1000) / 1000.0);
        return Answer.table(result, () -> table(load)).shownAs(out -> out.println(String.format(
            Locale.ROOT, "%d loaded, %d unchanged, %d refused", load.loaded(), load.unchanged(),
            load.refused().size())))
            .withStatus(load.refused().isEmpty() ? 0 : 1);
    }

    private static Load.Observer observer(Progress progress) {
        return new Load.Observer() {
            @Override
            public void advanced() {
                progress.advance();
            }

            @Override
            public void refused(Load.Refusal refusal) {
                progress.complain(refusal.file + ": " + refusal.reason);
            }
        };
    }

    private static Table<?> table(Load load) {
        return new Table<>(load.refused()).text("File", refusal -> refusal.file)
            .text("Reason", refusal -> refusal.reason);
    }
}
