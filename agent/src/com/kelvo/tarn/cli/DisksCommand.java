package com.kelvo.tarn.cli;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import java.util.ArrayList;
import java.util.List;
import javax.wbem.cim.UnsignedInt;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

@Command(name = "disks", description = "The whole disks with their geometry.",
         footer = "The capacity is computed: heads x sectors x data cylinders of 512 bytes.")
final class DisksCommand extends Listing<String, TrInstance> {
    @Parameters(arity = "0..1", paramLabel = "DISK", description = "Only this disk, such as c0t0d0.")
    private String disk;

    DisksCommand() {
        super("disk");
    }

    @Override
    protected String wanted() {
        return disk;
    }

    @Override
    protected List<TrInstance> all() {
        List<TrInstance> disks = new ArrayList<>();
        new SolarisDiskDriveProvider().enumerateDisks(disks::add);
        return disks;
    }

    @Override
    protected TrInstance one(String name) {
        return new SolarisDiskDriveProvider().getDisk(name);
    }

    @Override
    protected Table<TrInstance> table() {
        return new Table<TrInstance>()
            .text("Disk", row -> row.get(SolarisDiskDriveProvider.name))
            .text("Type", row -> orDash(row.get(SolarisDiskDriveProvider.diskType)))
            .number("Capacity", row -> capacity(row) == 0 ? "-" : Units.bytes(capacity(row)))
            .number("Heads", row -> row.get(SolarisDiskDriveProvider.heads))
            .number("Sectors", row -> row.get(SolarisDiskDriveProvider.sectorsPerTrack))
            .number("Cylinders", row -> row.get(SolarisDiskDriveProvider.physicalCylinders))
            .number("Data", row -> row.get(SolarisDiskDriveProvider.dataCylinders))
            .number("Alternate", row -> row.get(SolarisDiskDriveProvider.alternateCylinders))
            .text("Device", row -> orDash(row.get(SolarisDiskDriveProvider.deviceIdentifier)));
    }

    private static long capacity(TrInstance row) {
        return figure(row, SolarisDiskDriveProvider.heads) * figure(row, SolarisDiskDriveProvider.sectorsPerTrack)
            * figure(row, SolarisDiskDriveProvider.dataCylinders) * Units.SECTOR;
    }

    private static long figure(TrInstance row, TrProperty property) {
        return ((UnsignedInt) row.get(property)).longValue();
    }

    private static Object orDash(Object text) {
        return text == null ? "-" : text;
    }
}
