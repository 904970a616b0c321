package com.kelvo.tarn.cli;

import com.kelvo.tarn.cli.commands.ArrayCommand;
import com.kelvo.tarn.cli.commands.AuthenticateCommand;
import com.kelvo.tarn.cli.commands.BuildDateCommand;
import com.kelvo.tarn.cli.commands.ComputerSystemCommand;
import com.kelvo.tarn.cli.commands.CpuCommand;
import com.kelvo.tarn.cli.commands.DiskIoCommand;
import com.kelvo.tarn.cli.commands.DisksCommand;
import com.kelvo.tarn.cli.commands.HbaCommand;
import com.kelvo.tarn.cli.commands.HbaTestCommand;
import com.kelvo.tarn.cli.commands.LogicalDisksCommand;
import com.kelvo.tarn.cli.commands.OperatingSystemCommand;
import com.kelvo.tarn.cli.commands.PartitionsCommand;
import com.kelvo.tarn.cli.commands.PathsCommand;
import com.kelvo.tarn.cli.commands.ProcessorsCommand;
import com.kelvo.tarn.cli.commands.ReportCommand;
import com.kelvo.tarn.cli.commands.TarnOptions;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.StandardOutput;
import com.kelvo.tarn.cli.output.Terminal;
import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.OutputStreamWriter;
import java.nio.charset.StandardCharsets;
import picocli.CommandLine;
import picocli.CommandLine.Command;

/** The command line: what the library tells of a host, for people or for programs. */
@Command(name = "tarn", synopsisSubcommandLabel = "COMMAND",
         description = "Shows what the native library tells of a host.",
         footer = {"", "Exit status: 0 done; 1 the library raised an exception, or what was asked for is not there; "
                   + "2 bad usage, an unreadable host description, or a result that cannot be written; 3 the password "
                   + "is not that user's."},
         subcommands = {
             ReportCommand.class,
             ComputerSystemCommand.class,
             OperatingSystemCommand.class,
             LogicalDisksCommand.class,
             ProcessorsCommand.class,
             CpuCommand.class,
             DiskIoCommand.class,
             DisksCommand.class,
             PartitionsCommand.class,
             HbaCommand.class,
             HbaTestCommand.class,
             ArrayCommand.class,
             AuthenticateCommand.class,
             BuildDateCommand.class,
             PathsCommand.class,
         })
public final class Tarn extends TarnOptions {
    public static void main(String[] arguments) {
        StandardOutput out = new StandardOutput();
        Page err = new Page(new OutputStreamWriter(new FileOutputStream(FileDescriptor.err), StandardCharsets.UTF_8),
                            Terminal.NONE);
        CommandLine tarn = new CommandLine(new Tarn());
        int status = tarn.setOut(out).setErr(err).setExpandAtFiles(false)
            .setParameterExceptionHandler(new BadUsage())
            .setExecutionExceptionHandler((exception, command, parsed) -> {
                Page.complain(err, exception.toString());
                return CommandLine.ExitCode.SOFTWARE;
            })
            .execute(arguments);
        if (!out.finish()) {
            Page.complain(err, "the result cannot be written");
            status = CommandLine.ExitCode.USAGE;
        }
        err.flush();
        System.exit(status);
    }
}
