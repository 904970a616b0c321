package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.anonymous.AnonymousDescription;
import com.kelvo.tarn.cli.anonymous.Key;
import com.kelvo.tarn.cli.frame.TarnOptions;
import com.kelvo.tarn.cli.output.OutputFile;
import java.io.File;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.file.AccessDeniedException;
import java.nio.file.FileSystemException;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
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
             + "check finds. Exit status: 0 done, 2 bad usage, an unreadable description, or a result that cannot be "
             + "written; then nothing is made.")
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
                fill(output.toPath(), opened);
                return 0;
            }
            AnonymousDescription description = read(files.get(0), opened);
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

    /** Makes all files, or none: they get their names when the last is whole. */
    private void fill(Path folder, Key opened) throws IOException {
        Path unfinished = folder.resolve(".tarn." + ProcessHandle.current().pid() + ".tmp");
        Map<Path, File> made = new LinkedHashMap<>();
        boolean isNew = !Files.exists(folder);
        try {
            if (isNew) {
                Files.createDirectory(folder);
            }
            Files.createDirectory(unfinished);
            for (File file : files) {
                AnonymousDescription description = read(file, opened);
                Path name = unused(unfinished, description.fileName(),
                                   description.isCompressed() ? ".json.gz" : ".json");
                OutputFile.write(name.toString(), out -> description.writeTo(out, description.isCompressed()));
                made.put(name, file);
            }
            PrintWriter out = spec.commandLine().getOut();
            for (Map.Entry<Path, File> each : made.entrySet()) {
                Path named = folder.resolve(each.getKey().getFileName());
                Files.move(each.getKey(), named, StandardCopyOption.ATOMIC_MOVE);
                out.println(each.getValue() + ": " + named);
            }
        } catch (FileSystemException refused) {
            throw new IOException("'" + folder + "' cannot be written to"
                                  + (refused.getReason() == null ? "" : ": " + refused.getReason()), refused);
        } finally {
            made.keySet().forEach(left -> left.toFile().delete());
            unfinished.toFile().delete();
            if (isNew) {
                folder.toFile().delete(); // only when it is empty
            }
        }
    }

    private static Path unused(Path folder, String name, String ending) {
        Path path = folder.resolve(name + ending);
        for (int number = 2; Files.exists(path); number++) {
            path = folder.resolve(name + "-" + number + ending);
        }
        return path;
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
        } catch (IOException unusable) {
            throw new IOException(file + ": " + (unusable instanceof NoSuchFileException ? "there is no such file"
                                                 : unusable instanceof AccessDeniedException ? "permission denied"
                                                 : unusable.getMessage()), unusable);
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
