package com.kelvo.tarn.cli;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import java.io.PrintWriter;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;
import javax.wbem.cim.UnsignedInt;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

@Command(name = "partitions", description = "The slices of the disks.")
final class PartitionsCommand extends Listing<String, TrInstance> {
    private static final List<String> tags = List.of("unassigned", "boot", "root", "swap", "usr", "backup", "stand",
                                                     "var", "home", "alternates", "cache", "reserved");
    private static final int unmountable = 0x01;
    private static final int readOnly = 0x10;

    @Parameters(arity = "0..1", paramLabel = "NAME", description = "Only this slice, such as c0t0d0s0.")
    private String partition;

    PartitionsCommand() {
        super("partition");
    }

    @Override
    protected String wanted() {
        return partition;
    }

    @Override
    protected List<TrInstance> all() {
        List<TrInstance> partitions = new ArrayList<>();
        new SolarisDiskPartitionProvider().enumeratePartitions(partitions::add);
        return partitions;
    }

    @Override
    protected TrInstance one(String name) {
        return new SolarisDiskPartitionProvider().getPartition(name);
    }

    @Override
    protected void summarize(List<TrInstance> slices, PrintWriter out) {
        List<TrInstance> used = slices.stream().filter(row -> sectors(row) != 0).collect(Collectors.toList());
        show(used, out);
        if (used.size() < slices.size()) {
            out.println("Slices of 0 sectors left out: " + (slices.size() - used.size()) + " (partitions shows them)");
        }
    }

    @Override
    protected Table<TrInstance> table() {
        return new Table<TrInstance>()
            .text("Partition", row -> row.get(SolarisDiskPartitionProvider.name))
            .text("Disk", row -> row.get(SolarisDiskPartitionProvider.diskName))
            .number("Number", row -> row.get(SolarisDiskPartitionProvider.partitionNumber))
            .number("Sectors", row -> row.get(SolarisDiskPartitionProvider.sizeInSectors))
            .number("", row -> Units.bytes(sectors(row) * Units.SECTOR))
            .number("Tag", row -> row.get(SolarisDiskPartitionProvider.tag))
            .text("", row -> tagName(((UnsignedInt) row.get(SolarisDiskPartitionProvider.tag)).intValue()))
            .text("Flags", row -> flagNames(((UnsignedInt) row.get(SolarisDiskPartitionProvider.flags)).intValue()))
            .text("Mounted", row -> row.get(SolarisDiskPartitionProvider.mounted).equals(true) ? "yes" : "no")
            .note("Flags: w writable, r read-only; m mountable, u not mountable; any others in hexadecimal");
    }

    private static long sectors(TrInstance row) {
        return ((UnsignedInt) row.get(SolarisDiskPartitionProvider.sizeInSectors)).longValue();
    }

    private static String tagName(int tag) {
        return tag < tags.size() ? tags.get(tag) : "";
    }

    private static String flagNames(int flags) {
        return ((flags & readOnly) == 0 ? "w" : "r") + ((flags & unmountable) == 0 ? "m" : "u")
            + ((flags & ~(readOnly | unmountable)) == 0 ? "" : String.format(" 0x%04x", flags));
    }
}
