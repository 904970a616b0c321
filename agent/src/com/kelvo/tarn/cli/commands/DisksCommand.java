package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.cli.answers.Disks;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import java.util.List;
import java.util.Locale;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code disks}: {@code enumerateDisks}, or {@code getDisk} for one. */
@Command(name = "disks", description = "The whole disks with their geometry.",
         footer = "The capacity is computed: heads x sectors x data cylinders of 512 bytes.")
public final class DisksCommand extends TableCommand {
    @Parameters(arity = "0..1", paramLabel = "DISK",
                description = "Only this disk, such as c0t0d0 or /dev/rdsk/c0t0d0.")
    private String disk;

    @Override
    public Answer ask() {
        return Answer.listing("disk", disk, library()::disks, library()::disk, DisksCommand::table);
    }

    private static Table<?> table(List<TrInstance> answer) {
        return new Table<>(answer)
            .text("Disk", row -> row.get(SolarisDiskDriveProvider.name))
            .text("Type", row -> row.get(SolarisDiskDriveProvider.diskType))
            .number("Capacity", row -> Disks.capacity(row) == 0 ? null : Disks.capacity(row),
                    row -> Disks.capacity(row) == 0 ? null : Units.bytes(Disks.capacity(row)))
            .number("Heads", row -> known(row, SolarisDiskDriveProvider.heads))
            .number("Sectors/track", row -> known(row, SolarisDiskDriveProvider.sectorsPerTrack))
            .number("Cylinders", row -> known(row, SolarisDiskDriveProvider.physicalCylinders))
            .number("Data", row -> known(row, SolarisDiskDriveProvider.dataCylinders))
            .number("Alternate", row -> known(row, SolarisDiskDriveProvider.alternateCylinders))
            .text("Device", row -> row.get(SolarisDiskDriveProvider.deviceIdentifier));
    }

    /** Such as "SUN72G, 68.4 GiB", of a drive that has a type. */
    static String typeAndCapacity(TrInstance drive) {
        String type = Instances.text(drive, SolarisDiskDriveProvider.diskType);
        return (type.isEmpty() ? "unknown type" : type) + ", "
            + (Disks.capacity(drive) == 0 ? "capacity unknown" : Units.bytes(Disks.capacity(drive)));
    }

    /** Null when it is not known. */
    static String geometry(TrInstance drive) {
        return drive == null || drive.get(SolarisDiskDriveProvider.diskType) == null ? null
            : String.format(Locale.ROOT, "%s heads, %s sectors/track, %s data and %s alternate cylinders",
                            Stream.of(SolarisDiskDriveProvider.heads, SolarisDiskDriveProvider.sectorsPerTrack,
                                      SolarisDiskDriveProvider.dataCylinders,
                                      SolarisDiskDriveProvider.alternateCylinders).map(drive::get).toArray());
    }

    /** The library has no type for a disk whose geometry or label does not answer, and zeros for figures. */
    private static Object known(TrInstance row, TrProperty property) {
        return row.get(SolarisDiskDriveProvider.diskType) == null ? null : row.get(property);
    }
}
