package com.kelvo.tarn.cli;

import com.kelvo.tarn.cli.commands.ReportCommand;
import com.kelvo.tarn.cli.commands.SanCommand;
import com.kelvo.tarn.cli.frame.BadUsage;
import com.kelvo.tarn.cli.frame.TarnOptions;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.StandardOutput;
import com.kelvo.tarn.cli.output.Terminal;
import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.OutputStreamWriter;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Set;
import picocli.CommandLine.Command;
import picocli.CommandLine.IVersionProvider;
import picocli.CommandLine.Option;
import picocli.CommandLine;

/** The command line: what the library tells of a host, for people or for programs. */
@Command(name = "tarn", synopsisSubcommandLabel = "COMMAND",
         description = "Shows what the native library tells of a host.",
         versionProvider = Tarn.Version.class,
         footer = {"", "Exit status: 0 done; 1 the library raised an exception, or what was asked for is not there; "
                   + "2 bad usage, an unreadable host description, or a result that cannot be written; 3 the password "
                   + "is not that user's. check and compare have their own.",
                   "", "Environment: TARN_HOST names the host description that answers without --host. NO_COLOR, when "
                   + "it is not empty, keeps trouble on a terminal without colour. TARN_DB names the store of "
                   + "the commands below san without --db; PGPASSWORD, PGPASSFILE and PGUSER are as for psql."})
public final class Tarn extends TarnOptions {
    /** Each is served by the class of its name: "disk-io" by DiskIoCommand. */
    private static final List<String> COMMANDS = List.of(
        "report", "computer-system", "operating-system", "logical-disks", "processors", "cpu", "disk-io", "disks",
        "partitions", "hba", "hba-test", "array", "authenticate", "build-date", "paths", "disk", "check", "compare",
        "map", "metrics", "watch", "serve", "record", "anonymous", "san", "help", "completion", "manual");

    /** Those that work on all the others; the report only on its sections. */
    private static final Set<String> WORKS_ON_ALL = Set.of("help", "completion", "manual");

    @Option(names = {"-V", "--version"}, versionHelp = true, description = "Show the version.")
    private boolean version;

    /** The version, as the jar's manifest has it. */
    static final class Version implements IVersionProvider {
        @Override
        public String[] getVersion() {
            return new String[] {"tarn " + Tarn.class.getPackage().getImplementationVersion()};
        }
    }

    /**
     * Runs one command, and ends the virtual machine with its exit status, above the property tarn.statusBase where
     * that is set: then whoever started it can tell the command's own from all others.
     *
     * @param arguments the command line's
     */
    public static void main(String[] arguments) {
        System.exit(Integer.getInteger("tarn.statusBase", 0) + run(arguments));
    }

    /** Runs one command; returns its exit status. */
    static int run(String... arguments) {
        StandardOutput out = new StandardOutput();
        Page err = new Page(new OutputStreamWriter(new FileOutputStream(FileDescriptor.err), StandardCharsets.UTF_8),
                            Terminal.NONE);
        CommandLine tarn = withCommands(new CommandLine(new Tarn()), Arrays.asList(arguments));
        int status = tarn.setOut(out).setErr(err).setExpandAtFiles(false)
            .setParameterExceptionHandler(new BadUsage())
            .setExecutionExceptionHandler((exception, command, parsed) -> {
                Page.complain(err, exception.toString());
                return command.getCommandSpec().exitCodeOnExecutionException();
            })
            .execute(arguments);
        if (!out.finish()) {
            Page.complain(err, "the result cannot be written");
            status = BadUsage.exitStatus(tarn, arguments);
        }
        err.flush();
        return status;
    }

    /** Adds the commands that are named among the arguments, since each takes time to load; without any, all. */
    private static CommandLine withCommands(CommandLine tarn, List<String> arguments) {
        boolean all = Collections.disjoint(COMMANDS, arguments) || !Collections.disjoint(WORKS_ON_ALL, arguments);
        List<String> sections = !arguments.contains("report") ? List.of() : ReportCommand.SECTIONS;
        for (String name : COMMANDS) {
            if (all || arguments.contains(name) || sections.contains(name)) {
                tarn.addSubcommand(name, command(name));
            }
        }
        if (tarn.getSubcommands().containsKey("san")) {
            SanCommand.COMMANDS.forEach(
                name -> tarn.getSubcommands().get("san").addSubcommand(name, command("san-" + name)));
        }
        return tarn;
    }

    private static Object command(String name) {
        StringBuilder className = new StringBuilder("com.kelvo.tarn.cli.commands.");
        for (String word : name.split("-")) {
            className.append(Character.toUpperCase(word.charAt(0))).append(word, 1, word.length());
        }
        try {
            return Class.forName(className.append("Command").toString()).getConstructor().newInstance();
        } catch (ReflectiveOperationException missing) {
            throw new IllegalStateException(missing);
        }
    }
}
