package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code disk-io}: {@code enumerateDiskIOInformation}, or {@code getDiskIOInformation} for one. */
@Command(name = "disk-io", description = "What was read from and written to each disk, since boot.")
public final class DiskIoCommand extends TableCommand {
    @Parameters(arity = "0..1", paramLabel = "DISK",
                description = "Only this disk, such as c0t0d0 or /dev/rdsk/c0t0d0.")
    private String disk;

    @Override
    public Answer ask() {
        return Answer.listing("disk", disk, library()::diskIo, library()::diskIo, DiskIoCommand::table);
    }

    private static Table<?> table(List<SolarisDiskIOInformation> answer) {
        return new Table<>(answer)
            .text("Disk", data -> data.diskName().isEmpty() ? null : data.diskName())
            .text("Instance", SolarisDiskIOInformation::instanceName)
            .bytes("Read", SolarisDiskIOInformation::bytesRead)
            .bytes("Written", SolarisDiskIOInformation::bytesWritten)
            .number("Busy (s)", data -> Units.seconds(new Counter(data.runTime())))
            .number("Queue last changed (s since boot)", data -> Units.seconds(new Counter(data.waitLastUpdate())));
    }
}
