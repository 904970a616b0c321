package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.DeviceNames;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code disk-io}: {@code enumerateDiskIOInformation}, or {@code getDiskIOInformation} for one. */
@Command(name = "disk-io", description = "What was read from and written to each disk, since boot.")
public final class DiskIoCommand extends Listing<String, SolarisDiskIOInformation> {
    @Parameters(arity = "0..1", paramLabel = "DISK",
                description = "Only this disk, such as c0t0d0 or /dev/rdsk/c0t0d0.")
    private String disk;

    /** For all, or for the one that is named. */
    public DiskIoCommand() {
        super("disk");
    }

    @Override
    protected String wanted() {
        return disk;
    }

    @Override
    protected List<SolarisDiskIOInformation> all() {
        return library().diskIo();
    }

    @Override
    protected SolarisDiskIOInformation one(String name) {
        return new SolarisNativeMethod().getDiskIOInformation(DeviceNames.withoutDirectory(name));
    }

    @Override
    protected Table<?> table(List<SolarisDiskIOInformation> answer) {
        return new Table<>(answer)
            .text("Disk", data -> data.diskName().isEmpty() ? null : data.diskName())
            .text("Instance", SolarisDiskIOInformation::instanceName)
            .bytes("Read", SolarisDiskIOInformation::bytesRead)
            .bytes("Written", SolarisDiskIOInformation::bytesWritten)
            .number("Busy (s)", data -> Units.seconds(data.runTime()))
            .number("Queue last changed (s since boot)", data -> Units.seconds(data.waitLastUpdate()));
    }
}
