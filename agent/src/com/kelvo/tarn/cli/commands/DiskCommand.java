package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.Disks;
import com.kelvo.tarn.cli.answers.Counter;
import com.kelvo.tarn.cli.answers.FileSystem;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.OneDisk;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code disk}: a {@link OneDisk}. */
@Command(name = "disk",
         description = "All that is known of one disk: drive, counters, slices, file systems, ways to it.",
         footer = "The ways are all those to the logical unit, under whichever device name.")
public final class DiskCommand extends TableCommand {
    private static final Map<String, String> TELLERS = Map.of(
        "driver", "the driver's statistics", "device", "the device", "name", "its name alone");

    @Parameters(arity = "1..*", paramLabel = "NAME", description = "Any of its names: c1t0d0, c1t0d0s0, "
                + "/dev/dsk/c1t0d0s0, /devices/..., sd0, a mount point or a path below one, its serial number or "
                + "designator, NODE LUN number, the WWN of a port that it alone is behind.")
    private List<String> names;

    @Override
    public Answer ask() {
        String name = String.join(" ", names);
        List<String> remarks = new ArrayList<>();
        OneDisk disk = OneDisk.find(name, library(), remarks::add);
        return disk == null ? Answer.missing(String.join(": ", Stream.concat(Stream.of("no disk " + name),
                                                                             remarks.stream()).toArray(String[]::new)))
            : Answer.table(disk, () -> summary(disk)).shownAs(out -> show(disk, out))
                .withLog(line -> line.subject().isEmpty() || line.subject().equals(disk.name)); // not of other disks
    }

    private static void show(OneDisk disk, Page out) {
        summary(disk).printUpright(out);
        out.println();
        if (disk.partitions.isEmpty()) {
            out.println("no slices that can be read");
        } else {
            slices(disk).print(out);
        }
        if (!disk.mounts.isEmpty()) {
            out.println();
            LogicalDisksCommand.sizes(disk.mounts).print(out);
        }
        disk.units.forEach(unit -> {
            out.println();
            double all = unit.disks().size() < 2 ? 0 : unit.paths.stream().collect(Collectors.toMap(
                LogicalUnit.Path::deviceName, disk::bytesOver, (one, same) -> one)).values().stream()
                .mapToDouble(bytes -> bytes).sum();
            PathsCommand.tree(unit, path -> all == 0 ? ""
                : ", " + Units.percent(disk.bytesOver(path), all) + " of the bytes").print(out);
        });
    }

    private static Table<OneDisk> summary(OneDisk disk) {
        Table<OneDisk> table = new Table<>(List.of(disk))
            .text("Disk", found -> found.name)
            .text("Instance", found -> found.instance);
        Identity identity = disk.identity;
        known(table, "Also", disk.alike.isEmpty() ? null : String.join(", ", disk.alike));
        known(table, "Vendor", identity == null ? null : identity.vendor);
        known(table, "Product", identity == null ? null : identity.product);
        known(table, "Revision", identity == null ? null : identity.revision);
        known(table, "Serial", identity == null ? null : identity.serial);
        known(table, "Designator", identity == null ? null : identity.designator);
        Long size = identity == null ? null : identity.sizeBytes;
        if (size == null) {
            table.exact("Size", found -> null);
        } else {
            table.number("Size", found -> size, found -> size + " bytes (" + Units.bytes(size) + ")");
        }
        String from = identity == null ? null : identity.from;
        if (from == null) {
            table.exact("Told by", found -> null);
        } else {
            table.text("Told by", found -> from, found -> TELLERS.getOrDefault(from, from));
        }
        return table
            .text("Drive", found -> found.drive == null ? null : found.drive.get(SolarisDiskDriveProvider.diskType),
                  DiskCommand::drive)
            .text("Geometry", found -> DisksCommand.geometry(found.drive))
            .text("Device", found -> found.drive == null ? null
                : found.drive.get(SolarisDiskDriveProvider.deviceIdentifier))
            .number("Read", found -> found.io == null ? null : new Counter(found.io.bytesRead()).text(),
                    found -> found.io == null ? null : count(found.io.bytesRead()))
            .number("Written", found -> found.io == null ? null : new Counter(found.io.bytesWritten()).text(),
                    found -> found.io == null ? null : count(found.io.bytesWritten()))
            .number("Busy", found -> found.io == null ? null : Units.seconds(new Counter(found.io.runTime())),
                    found -> found.io == null ? null : busy(new Counter(found.io.runTime()), found.sinceBoot()));
    }

    /** What is not known has no line. */
    private static void known(Table<OneDisk> table, String heading, String value) {
        if (value == null) {
            table.exact(heading, found -> null);
        } else {
            table.text(heading, found -> value);
        }
    }

    private static String drive(OneDisk disk) {
        if (disk.drive == null) {
            return Page.TROUBLE + "cannot be opened";
        }
        return disk.drive.get(SolarisDiskDriveProvider.diskType) == null
            ? Page.TROUBLE + "geometry or label not readable" : DisksCommand.typeAndCapacity(disk.drive);
    }

    private static String count(long bytes) {
        Counter counter = new Counter(bytes);
        return counter.isKept() ? counter.text() + " bytes (" + Units.bytes(counter) + ")" : null;
    }

    private static String busy(Counter time, long sinceBoot) {
        return !time.isKept() ? null
            : Units.seconds(time) + " s" + (sinceBoot == 0 ? ""
                : ", " + Units.decimal(100 * time.value().doubleValue() / sinceBoot, 1) + " % busy since boot");
    }

    private static Table<TrInstance> slices(OneDisk disk) {
        return new Table<>(disk.partitions)
            .text("Slice", row -> row.get(SolarisDiskPartitionProvider.name))
            .number("Size", row -> Units.bytes(PartitionsCommand.sectors(row) * Disks.SECTOR))
            .text("Tag", row -> PartitionsCommand.tagName(row).isEmpty()
                ? row.get(SolarisDiskPartitionProvider.tag) : PartitionsCommand.tagName(row))
            .text("Flags", row -> PartitionsCommand.flagNames(row))
            .text("Mounted", row -> mountPoint(row, disk.mounts));
    }

    /** Where the slice is mounted; the table of mounts need not know of it. */
    private static String mountPoint(TrInstance slice, List<FileSystem> mounts) {
        return mounts.stream()
            .filter(mount -> mount.device.endsWith("/" + Instances.text(slice, SolarisDiskPartitionProvider.name)))
            .map(mount -> mount.mountPoint).findFirst()
            .orElse(slice.get(SolarisDiskPartitionProvider.mounted).equals(true) ? "yes" : "no");
    }
}
