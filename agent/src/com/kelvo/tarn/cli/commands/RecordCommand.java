package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.anonymous.AnonymousDescription;
import com.kelvo.tarn.cli.anonymous.Key;
import com.kelvo.tarn.cli.frame.TarnOptions;
import com.kelvo.tarn.cli.output.OutputFile;
import java.io.File;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicReference;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParentCommand;
import picocli.CommandLine.Spec;

/** Hands over to tarn-record, which asks the host itself and needs no Java where a host is recorded. */
@Command(name = "record", description = "The host's description, for --host of another machine.",
         footer = "Standard error tells what was recorded, and what could not be read. Passwords are never recorded. "
             + "Exit status: 0 done, 1 the description cannot be written or is not whole, 2 bad usage or no "
             + "usable host.")
public final class RecordCommand implements Callable<Integer> {
    @ParentCommand
    private TarnOptions tarn;

    @Spec
    private CommandSpec spec;

    @Option(names = "--output", paramLabel = "FILE", description = "Make this new file, which only its owner may read, "
            + "and print nothing.")
    private String output;

    /** How many seconds what is known of the host has to be written when the command is ended. */
    private static final int PATIENCE = 60;

    private final CountDownLatch written = new CountDownLatch(1);

    private final List<String> arrays = new ArrayList<>();

    @Option(names = "--timeout", paramLabel = "SECONDS", description = "How long a call to a disk, an adapter or a "
            + "file system has to answer; without it, 10.")
    private String timeout;

    @Option(names = "--array-pages", description = "Ask every disk for the page 0xC0 of an array's disks; one that has "
            + "none counts an error.")
    private boolean arrayPages;

    @Option(names = "--quiet", description = "Say nothing on standard error.")
    private boolean quiet;

    @Option(names = "--anonymous", paramLabel = "KEYFILE", description = "Replace what is not known to be harmless by "
            + "pseudonyms, which follow from this file's bytes, as the command anonymous does. What the host itself "
            + "tells is on no disk then.")
    private File anonymous;

    @Option(names = "--array", arity = "4", paramLabel = "CONTROLLER1 CONTROLLER2 VENDOR PRODUCT",
            hideParamSyntax = true, description = "Also the drive statistics of this array; as often as there are "
            + "arrays.")
    private void setArrays(List<String> given) {
        arrays.clear();
        arrays.addAll(given);
    }

    @Override
    public Integer call() throws IOException, InterruptedException {
        if (tarn.csv() || tarn.json() || tarn.hba().any()) {
            throw new ParameterException(spec.commandLine(),
                                         "A recording is JSON as it is; --json, --csv and device names do not "
                                              + "go with it");
        }
        tarn.refuseRepeated(spec.commandLine());
        tarn.chooseHost(spec.commandLine());
        if (anonymous == null) {
            return start(recorder(output)).waitFor();
        }
        try {
            return recordAnonymously(Key.read(anonymous.getPath()));
        } catch (IOException unusable) {
            throw new ParameterException(spec.commandLine(), unusable.getMessage(), unusable);
        }
    }

    private ProcessBuilder recorder(String file) {
        List<String> command = new ArrayList<>(List.of(System.getProperty("tarn.recorder", "tarn-record")));
        if (file != null) {
            command.addAll(List.of("--output", file));
        }
        if (timeout != null) {
            command.addAll(List.of("--timeout", timeout));
        }
        if (arrayPages) {
            command.add("--array-pages");
        }
        if (quiet) {
            command.add("--quiet");
        }
        for (int i = 0; i < arrays.size(); i += 4) {
            command.add("--array");
            command.addAll(arrays.subList(i, i + 4));
        }
        ProcessBuilder recorder = new ProcessBuilder(command).inheritIO();
        File host = tarn.host();
        if (host != null) {
            recorder.environment().put("TARN_HOST", host.getPath());
        }
        return recorder;
    }

    /** Lets the recorder write into a pipe. What it could not finish is written as far as it goes. */
    private int recordAnonymously(Key key) throws IOException, InterruptedException {
        if (output != null && Files.exists(Path.of(output), LinkOption.NOFOLLOW_LINKS)) {
            throw new IOException("'" + output + "' cannot be written: there is a file of that name");
        }
        try {
            Process recorder = start(recorder(null).redirectOutput(ProcessBuilder.Redirect.PIPE));
            byte[] recording = recorder.getInputStream().readAllBytes();
            int status = recorder.waitFor();
            if (recording.length == 0) {
                return status;
            }
            AnonymousDescription description = new AnonymousDescription(recording, key);
            if (output != null) {
                OutputFile.make(output, out -> description.writeTo(out, false));
            } else {
                description.writeTo(spec.commandLine().getOut());
            }
            return status;
        } finally {
            written.countDown();
        }
    }

    private Process start(ProcessBuilder recorder) throws IOException {
        AtomicReference<Process> started = new AtomicReference<>();
        synchronized (started) {
            Runtime.getRuntime().addShutdownHook(new Thread(() -> end(started)));
            started.set(recorder.start());
            return started.get();
        }
    }

    /** What ends the command line ends the recorder too, even one that is just being started. */
    private void end(AtomicReference<Process> started) {
        synchronized (started) {
            Process recorder = started.get();
            if (recorder != null) {
                recorder.toHandle().destroy(); // what it still has to say can be read
            }
        }
        if (anonymous != null) {
            try {
                written.await(PATIENCE, TimeUnit.SECONDS);
            } catch (InterruptedException hurried) {
                // it ends as it is
            }
        }
    }
}
