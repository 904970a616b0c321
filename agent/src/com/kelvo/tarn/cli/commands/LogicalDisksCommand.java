package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

@Command(name = "logical-disks", description = "The mounted UFS and NFS file systems.",
         footer = "The library computes sizes only for the one that is asked for by name.")
public final class LogicalDisksCommand extends Listing<String, SolarisLogicalDisk> {
    @Parameters(arity = "0..1", paramLabel = "MOUNT-POINT", description = "Only this one, with its sizes.")
    private String mountPoint;

    LogicalDisksCommand() {
        super("logical disk");
    }

    @Override
    protected String wanted() {
        return mountPoint;
    }

    @Override
    protected List<SolarisLogicalDisk> all() {
        return new SolarisNativeMethod().enumerateLogicalDiskNames();
    }

    @Override
    protected SolarisLogicalDisk one(String name) {
        return new SolarisNativeMethod().getLogicalDiskByName(name);
    }

    @Override
    protected Table<?> table(List<SolarisLogicalDisk> answer) {
        Table<SolarisLogicalDisk> table = new Table<>(answer)
            .text("Mount point", SolarisLogicalDisk::mountPoint)
            .text("Type", SolarisLogicalDisk::fileSystemType)
            .text("Device", SolarisLogicalDisk::device);
        return mountPoint == null ? table.note("logical-disks MOUNT-POINT shows sizes") : table
            .bytes("Total", SolarisLogicalDisk::totalBytes)
            .bytes("Available", SolarisLogicalDisk::availableBytes)
            .bytes("Free", SolarisLogicalDisk::freeBytes)
            .number("Block size", SolarisLogicalDisk::blockSize);
    }
}
