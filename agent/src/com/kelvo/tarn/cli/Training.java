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

    /** Each argument is a command, its words separated by single blanks; those that need a store have one of their own. */
    public static void main(String[] commands) throws IOException {
        for (String command : commands) {
            Tarn.run(command.split(" "));
        }
        Path folder = Files.createTempDirectory("tarn-training");
        Path host = folder.resolve("host.json");
        Path store = folder.resolve("network.db");
        try {
            Files.writeString(host, HOST);
            Tarn.run("san", "load", "--db", store.toString(), host.toString());
            Tarn.run("san", "check", "--db", store.toString());
            Tarn.run("--json", "san", "who", "--db", store.toString(), "training");
        } finally {
            for (Path each : List.of(host, store, folder)) {
                Files.deleteIfExists(each);
            }
        }
    }
}
