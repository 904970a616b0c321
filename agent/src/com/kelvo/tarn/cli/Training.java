package com.kelvo.tarn.cli;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

/** Runs commands one after the other, so that a class-data archive made as the virtual machine ends serves them all. */
final class Training {
    private static final String HOST = "{\"sysinfo\": {\"SI_HOSTNAME\": \"training\"}}";

    private Training() {
    }

    /** Each argument is a command, its words separated by single blanks; those that ask a store follow by themselves. */
    public static void main(String[] commands) {
        for (String command : commands) {
            Tarn.run(command.split(" "));
        }
        try {
            askStore(Files.createTempDirectory("tarn-training"));
        } catch (IOException noRoom) {
            // then they start as without an archive
        }
    }

    private static void askStore(Path folder) throws IOException {
        Path host = folder.resolve("host.json");
        Path store = folder.resolve("network.db");
        for (Path each : List.of(folder, host, store)) {
            each.toFile().deleteOnExit(); // the last is deleted first; a signal is an exit, too
        }
        Files.writeString(host, HOST);
        Tarn.run("san", "load", "--db", store.toString(), host.toString());
        Tarn.run("san", "check", "--db", store.toString());
        Tarn.run("--json", "san", "who", "--db", store.toString(), "training");
    }
}
