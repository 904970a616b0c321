package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import java.math.BigInteger;
import java.util.List;
import java.util.function.Function;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

/** {@code logical-disks}: {@code enumerateLogicalDiskNames}, {@code getLogicalDiskByName} for one and for sizes. */
@Command(name = "logical-disks", description = "The mounted UFS and NFS file systems.",
         footer = "The library computes sizes only for one that is asked for by name; --sizes asks for each.")
public final class LogicalDisksCommand extends TableCommand {
    @Parameters(arity = "0..1", paramLabel = "MOUNT-POINT", description = "Only this one, with its sizes.")
    private String mountPoint;

    @Option(names = "--sizes", description = "With the sizes of all, as df shows them.")
    private boolean sizes;

    @Override
    public Answer ask() {
        return Answer.listing("logical disk", mountPoint, this::all, library()::logicalDisk, this::table);
    }

    private List<SolarisLogicalDisk> all() {
        List<SolarisLogicalDisk> disks = library().logicalDisks();
        return !sizes ? disks : disks.stream().map(library()::withSizes).collect(Collectors.toList());
    }

    private Table<?> table(List<SolarisLogicalDisk> answer) {
        if (sizes || mountPoint != null) {
            return sizes(answer);
        }
        return new Table<>(answer)
            .text("Mount point", SolarisLogicalDisk::mountPoint)
            .text("Type", SolarisLogicalDisk::fileSystemType)
            .text("Device", SolarisLogicalDisk::device)
            .note("--sizes shows how large and how full they are");
    }

    /** As df has them. */
    static Table<SolarisLogicalDisk> sizes(List<SolarisLogicalDisk> disks) {
        Table<SolarisLogicalDisk> table = new Table<>(disks)
            .text("Mount point", SolarisLogicalDisk::mountPoint)
            .text("Type", SolarisLogicalDisk::fileSystemType);
        size(table, "Total", FileSystemUse::total);
        size(table, "Used", FileSystemUse::used);
        size(table, "Available", FileSystemUse::available);
        return table
            .number("Capacity", disk -> known(disk, LogicalDisksCommand::percent), disk -> known(
                disk, use -> (use.isFull(FileSystemUse.FULL) ? Page.TROUBLE : "") + percent(use)))
            .text("Device", SolarisLogicalDisk::device);
    }

    private static void size(Table<SolarisLogicalDisk> table, String heading,
                             Function<FileSystemUse, BigInteger> size) {
        table.number(heading, disk -> known(disk, size), disk -> {
            BigInteger bytes = known(disk, size);
            return bytes == null ? "unknown" : Units.bytes(bytes.doubleValue());
        });
    }

    private static String percent(FileSystemUse use) {
        return use.usable().signum() == 0 ? "100.0%"
            : Units.percent(use.used().doubleValue(), use.usable().doubleValue());
    }

    /** Null: the system would not tell the sizes. */
    private static <V> V known(SolarisLogicalDisk disk, Function<FileSystemUse, V> fact) {
        FileSystemUse use = new FileSystemUse(disk);
        return use.isKnown() ? fact.apply(use) : null;
    }
}
