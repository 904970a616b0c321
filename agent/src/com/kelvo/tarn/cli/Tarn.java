package com.kelvo.tarn.cli;

import com.kelvo.tarn.replay.ReplayHost;
import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.PrintWriter;
import java.nio.charset.StandardCharsets;
import picocli.CommandLine;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ScopeType;
import picocli.CommandLine.Spec;

/** The command line: what the library tells of a host, for people or, as JSON, for programs. */
@Command(name = "tarn", synopsisSubcommandLabel = "COMMAND",
         description = "Shows what the native library tells of a host.",
         footer = {"", "Exit status: 0 done; 1 the library raised an exception; 2 bad usage, an unreadable host "
                   + "description, or a result that cannot be written; 3 the password is not that user's."},
         subcommands = {ReportCommand.class, ComputerSystemCommand.class, OperatingSystemCommand.class,
                        LogicalDisksCommand.class, ProcessorsCommand.class, CpuCommand.class, DiskIoCommand.class,
                        DisksCommand.class, PartitionsCommand.class, HbaCommand.class, HbaTestCommand.class,
                        ArrayCommand.class, AuthenticateCommand.class, BuildDateCommand.class})
public final class Tarn {
    @Spec
    private CommandSpec spec;

    @Option(names = "--host", paramLabel = "FILE", scope = ScopeType.INHERIT,
            description = "The host description that answers. Without it, the one that the environment variable "
                + "TARN_HOST names; without that, the built-in one.")
    private String host;

    @Option(names = "--json", scope = ScopeType.INHERIT,
            description = "Print one JSON document with the members result, log and exception.")
    private boolean json;

    @Option(names = {"-h", "--help"}, usageHelp = true, scope = ScopeType.INHERIT, description = "Show this help.")
    private boolean help;

    @Mixin
    private HbaOptions hba;

    private final LibraryLog log = new LibraryLog();

    public static void main(String[] arguments) {
        PrintWriter out = utf8(FileDescriptor.out);
        PrintWriter err = new Page(utf8(FileDescriptor.err));
        int status = new CommandLine(new Tarn())
            .setOut(out)
            .setErr(err)
            .setExpandAtFiles(false)
            .setParameterExceptionHandler(new BadUsage())
            .setExecutionExceptionHandler((exception, commandLine, parsed) -> {
                complain(err, exception.toString());
                return CommandLine.ExitCode.SOFTWARE;
            })
            .execute(arguments);
        if (out.checkError()) {
            complain(err, "the result cannot be written");
            status = CommandLine.ExitCode.USAGE;
        }
        err.flush();
        System.exit(status);
    }

    /** One line on standard error, whatever the message holds. */
    static void complain(PrintWriter err, String message) {
        err.println("tarn: " + message.strip().replaceAll("\\s*\\R\\s*", " "));
    }

    /** Lets the host that was asked for answer. */
    void chooseHost() {
        String path = host != null ? host : System.getenv().getOrDefault("TARN_HOST", "");
        if (host == null && path.isEmpty()) {
            return;
        }
        if (path.isEmpty()) {
            throw new ParameterException(spec.commandLine(), "--host: no file named");
        }
        try {
            ReplayHost.load(path);
        } catch (IllegalArgumentException unreadable) {
            throw new ParameterException(spec.commandLine(), unreadable.getMessage(), unreadable);
        }
    }

    boolean json() {
        return json;
    }

    /** The choices for host bus adapters that were made before the command. */
    HbaOptions hba() {
        return hba;
    }

    LibraryLog log() {
        return log;
    }

    private static PrintWriter utf8(FileDescriptor descriptor) {
        return new PrintWriter(new FileOutputStream(descriptor), false, StandardCharsets.UTF_8);
    }
}
