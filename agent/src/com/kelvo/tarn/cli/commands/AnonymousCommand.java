package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.anonymous.AnonymousDescription;
import com.kelvo.tarn.cli.anonymous.Key;
import com.kelvo.tarn.cli.frame.TarnOptions;
import com.kelvo.tarn.cli.output.OutputFile;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Reasons;
import java.io.File;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.Path;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.concurrent.Callable;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.ParentCommand;
import picocli.CommandLine.Spec;

/** {@code anonymous}: descriptions that exist, with pseudonyms. */
@Command(name = "anonymous", description = "Host descriptions with pseudonyms in place of names, world-wide names, "
         + "serial numbers and all else that is not known to be harmless.",
         footer = "A name has the same pseudonym in all descriptions with the same key, of the same form and length; "
             + "without the key nothing leads back. Numbers, models and firmware stay, and so does what "
             + "check finds. Exit status: 0 done; 1 some of several descriptions cannot be used, each told in "
             + "a line; 2 bad usage, a single description that cannot be used, or a result that cannot be written.")
public final class AnonymousCommand implements Callable<Integer> {
    private static final long MOST = 1 << 30;
    private static final int FILE_TYPE = 0170000;
    private static final int CHARACTER_DEVICE = 0020000;
    private static final int BLOCK_DEVICE = 0060000;

    @ParentCommand
    private TarnOptions tarn;

    @Spec
    private CommandSpec spec;

    @Parameters(index = "0", paramLabel = "KEYFILE", description = "What pseudonyms follow from: a file of 32 random "
            + "bytes or more, which only its owner may read.")
    private File key;

    @Parameters(index = "1..*", arity = "1..*", paramLabel = "FILE", description = "A description, which gzip may have "
            + "compressed; - is standard input.")
    private List<File> files;

    @Option(names = "--output", paramLabel = "FILE", description = "Make or replace this file, in one step, compressed "
            + "where its name ends in .gz. For several descriptions, or when it is a folder: make a file in it for "
            + "each, called by the host's pseudonym and the time of the recording, and print their names. Without it, "
            + "print the result.")
    private File output;

    @Override
    public Integer call() throws IOException {
        if (tarn.csv() || tarn.json() || tarn.hba().any() || tarn.host() != null) {
            throw refusal("A description is JSON as it is; --host, --json, --csv and device names do not go with it");
        }
        if (files.size() > 1 && output == null) {
            throw refusal("--output names a folder for several descriptions");
        }
        try {
            Key opened = Key.read(key.getPath());
            if (output != null && (files.size() > 1 || output.isDirectory())) {
                return fill(output.toPath(), opened);
            }
            AnonymousDescription description = read(files.get(0), opened);
            if (output != null && output.exists() && Files.isSameFile(output.toPath(), key.toPath())) {
                throw new IOException("'" + output + "' is the key");
            }
            if (output == null) {
                description.writeTo(spec.commandLine().getOut());
            } else {
                boolean compressed = output.getName().endsWith(".gz");
                OutputFile.write(output.getPath(), out -> description.writeTo(out, compressed));
            }
            return 0;
        } catch (IOException unusable) {
            throw new ParameterException(spec.commandLine(), unusable.getMessage(), unusable);
        }
    }

    private ParameterException refusal(String message) {
        return new ParameterException(spec.commandLine(), message);
    }

    /** Makes a file of each description that can be used, and tells of the others why they cannot. */
    private int fill(Path folder, Key opened) throws IOException {
        Set<Path> made = new HashSet<>();
        int status = 0;
        for (File file : files) {
            AnonymousDescription description;
            try {
                description = read(file, opened);
            } catch (IOException unusable) {
                Page.complain(spec.commandLine().getErr(), unusable.getMessage());
                status = 1;
                continue;
            }
            try {
                Files.createDirectories(folder);
            } catch (IOException refused) {
                throw new IOException("'" + folder + "' cannot be a folder", refused);
            }
            String ending = description.isCompressed() ? ".json.gz" : ".json";
            Path path = folder.resolve(description.fileName() + ending);
            for (int number = 2; !made.add(path); number++) {
                path = folder.resolve(description.fileName() + "-" + number + ending);
            }
            OutputFile.write(path.toString(), out -> description.writeTo(out, description.isCompressed()));
            spec.commandLine().getOut().println(file + ": " + path);
        }
        return status;
    }

    private static AnonymousDescription read(File file, Key opened) throws IOException {
        try {
            byte[] bytes;
            if (file.getPath().equals("-")) {
                bytes = System.in.readAllBytes();
            } else {
                refuseEndless(file.toPath());
                bytes = Files.readAllBytes(file.toPath());
            }
            return new AnonymousDescription(bytes, opened);
        } catch (IOException | InvalidPathException unusable) {
            throw new IOException(file + ": " + Reasons.of(unusable), unusable);
        }
    }

    private static void refuseEndless(Path file) throws IOException {
        int type = (Integer) Files.getAttribute(file, "unix:mode") & FILE_TYPE;
        if (type == CHARACTER_DEVICE || type == BLOCK_DEVICE) {
            throw new IOException("it is a device");
        } else if (Files.isDirectory(file)) {
            throw new IOException("it is a directory");
        } else if (Files.size(file) > MOST) {
            throw new IOException("it is larger than 1 GB");
        }
    }
}
