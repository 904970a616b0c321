package com.kelvo.tarn.cli;

import com.kelvo.tarn.cli.output.Resources;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

/** Runs commands one after the other, so that a class-data archive made as the virtual machine ends serves them all. */
final class Training {
    /** Hosts with most of what may be wrong with them: the name of each, its second array port, a unit of its own. */
    private static final List<String[]> HOSTS = List.of(new String[] {"one", "200200a0b8000000", "1"},
        new String[] {"two", "200200a0b8000000", "1"}, new String[] {"three", "200100a0b8000000", "2"});

    private Training() {
    }

    /** Each argument is a command, its words separated by blanks; those that ask a store follow by themselves. */
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
        folder.toFile().deleteOnExit(); // a signal is an exit, too
        String store = within(folder, "network.db").toString();
        String template = Resources.text(Training.class, "training.json");
        for (String[] host : HOSTS) {
            Path description = within(folder, host[0] + ".json");
            Files.writeString(description, template.replace("\"NAME\"", '"' + host[0] + '"')
                              .replace("SECOND", host[1]).replace("\"OWN\"", host[2]));
            Tarn.run("san", "load", "--db", store, description.toString());
        }
        Tarn.run("san", "check", "--db", store);
        Tarn.run("--json", "san", "who", "--db", store, HOSTS.get(0)[0]);
    }

    /** A file that is deleted before its folder is: the last one first. */
    private static Path within(Path folder, String name) {
        Path file = folder.resolve(name);
        file.toFile().deleteOnExit();
        return file;
    }
}
