package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.TarnOptions;
import java.io.File;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
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

    private final List<String> arrays = new ArrayList<>();

    @Option(names = "--timeout", paramLabel = "SECONDS", description = "How long a call to a disk, an adapter or a "
            + "file system has to answer; without it, 10.")
    private String timeout;

    @Option(names = "--array-pages", description = "Ask every disk for the page 0xC0 of an array's disks; one that has "
            + "none counts an error.")
    private boolean arrayPages;

    @Option(names = "--quiet", description = "Say nothing on standard error.")
    private boolean quiet;

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
        List<String> command = new ArrayList<>(List.of(System.getProperty("tarn.recorder", "tarn-record")));
        if (output != null) {
            command.addAll(List.of("--output", output));
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
        AtomicReference<Process> started = new AtomicReference<>();
        synchronized (started) {
            Runtime.getRuntime().addShutdownHook(new Thread(() -> end(started)));
            started.set(recorder.start());
        }
        return started.get().waitFor();
    }

    /** What ends the command line ends the recorder too, even one that is just being started. */
    private static void end(AtomicReference<Process> started) {
        synchronized (started) {
            Process recorder = started.get();
            if (recorder != null) {
                recorder.destroy();
            }
        }
    }
}
