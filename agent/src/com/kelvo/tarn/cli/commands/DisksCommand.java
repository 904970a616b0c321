package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.cli.answers.Disks;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code disks}: {@code enumerateDisks}, or {@code getDisk} for one. */
@Command(name = "disks", description = "The whole disks: what they are, and their geometry.",
         footer = "The capacity is computed: heads x sectors x data cylinders of 512 bytes.")
public final class DisksCommand extends TableCommand {
    @Parameters(arity = "0..1", paramLabel = "DISK",
                description = "Only this disk, such as c0t0d0 or /dev/rdsk/c0t0d0.")
    private String disk;

    @Override
    public Answer ask() {
        List<TrInstance> all = disk == null ? library().disks() : List.of();
        return Answer.listing("disk", disk, () -> all, library()::disk, this::identified)
            .summarizedAs(out -> {
                if (all.isEmpty()) {
                    out.println("no disks");
                } else {
                    geometry(capacity(new Table<>(all).text("Disk", DisksCommand::nameOf)
                                          .text("Type", DisksCommand::type))).print(out);
                }
            });
    }

    /** With what they are, which is no call of the agent's; where that is told, a label's type says little more. */
    private Table<?> identified(List<TrInstance> answer) {
        Map<String, Identity> identities =
            library().knownIdentities().stream().collect(Collectors.toMap(identity -> identity.disk, each -> each));
        Map<String, Function<TrInstance, Object>> known = new LinkedHashMap<>();
        known.put("Vendor", row -> of(row, identities, identity -> identity.vendor));
        known.put("Product", row -> of(row, identities, identity -> identity.product));
        known.put("Serial", row -> of(row, identities, identity -> identity.serial));
        known.values().removeIf(cell -> answer.stream().map(cell).allMatch(Objects::isNull));
        Table<TrInstance> table = new Table<>(answer).text("Disk", DisksCommand::nameOf);
        if (known.isEmpty()) {
            table.text("Type", DisksCommand::type);
        } else {
            table.exact("Type", DisksCommand::type);
        }
        capacity(table);
        if (!known.isEmpty()) {
            known.forEach((heading, cell) -> table.text(heading, null, cell));
            table.text("Type", null, DisksCommand::type);
        }
        return geometry(table)
            .exact("Vendor", row -> of(row, identities, identity -> identity.vendor))
            .exact("Product", row -> of(row, identities, identity -> identity.product))
            .exact("Revision", row -> of(row, identities, identity -> identity.revision))
            .exact("Serial", row -> of(row, identities, identity -> identity.serial))
            .exact("Designator", row -> of(row, identities, identity -> identity.designator))
            .exact("Size", row -> of(row, identities, identity -> identity.sizeBytes));
    }

    private static Object of(TrInstance row, Map<String, Identity> identities, Function<Identity, Object> told) {
        Identity identity = identities.get(nameOf(row));
        return identity == null ? null : told.apply(identity);
    }

    private static String nameOf(TrInstance row) {
        return Instances.text(row, SolarisDiskDriveProvider.name);
    }

    private static Object type(TrInstance row) {
        return row.get(SolarisDiskDriveProvider.diskType);
    }

    private static Table<TrInstance> capacity(Table<TrInstance> table) {
        return table.number("Capacity", row -> Disks.capacity(row) == 0 ? null : Disks.capacity(row),
                            row -> Disks.capacity(row) == 0 ? null : Units.bytes(Disks.capacity(row)));
    }

    private static Table<TrInstance> geometry(Table<TrInstance> table) {
        return table
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
