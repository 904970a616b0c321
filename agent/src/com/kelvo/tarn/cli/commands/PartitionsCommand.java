package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.Disks;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import java.util.List;
import java.util.Locale;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code partitions}: {@code enumeratePartitions}, or {@code getPartition} for one. */
@Command(name = "partitions", description = "The slices of the disks.")
public final class PartitionsCommand extends TableCommand {
    private static final List<String> TAGS = List.of("unassigned", "boot", "root", "swap", "usr", "backup", "stand",
                                                     "var", "home", "alternates", "cache", "reserved");
    private static final int UNMOUNTABLE = 0x01;
    private static final int READ_ONLY = 0x10;

    @Parameters(arity = "0..1", paramLabel = "NAME",
                description = "Only this slice, such as c0t0d0s0 or /dev/dsk/c0t0d0s0.")
    private String partition;

    @Override
    public Answer ask() {
        List<TrInstance> all = partition == null ? library().partitions() : List.of();
        return Answer.listing("partition", partition, () -> all, library()::partition, PartitionsCommand::table)
            .summarizedAs(out -> summarize(all, out));
    }

    private static void summarize(List<TrInstance> slices, Page out) {
        List<TrInstance> used = slices.stream().filter(row -> sectors(row) != 0).collect(Collectors.toList());
        if (used.isEmpty()) {
            out.println("no partitions");
        } else {
            table(used).print(out);
        }
        if (used.size() < slices.size()) {
            out.println("Slices of 0 sectors left out: " + (slices.size() - used.size()) + " (partitions shows them)");
        }
    }

    private static Table<?> table(List<TrInstance> answer) {
        return new Table<>(answer)
            .text("Partition", row -> row.get(SolarisDiskPartitionProvider.name))
            .text("Disk", row -> row.get(SolarisDiskPartitionProvider.diskName))
            .number("Number", row -> row.get(SolarisDiskPartitionProvider.partitionNumber))
            .number("Sectors", row -> row.get(SolarisDiskPartitionProvider.sizeInSectors))
            .reading(row -> Units.bytes(sectors(row) * Disks.SECTOR))
            .number("Tag", row -> row.get(SolarisDiskPartitionProvider.tag))
            .gloss(PartitionsCommand::tagName)
            .text("Flags", row -> row.get(SolarisDiskPartitionProvider.flags),
                  PartitionsCommand::flagNames)
            .text("Mounted", row -> row.get(SolarisDiskPartitionProvider.mounted).equals(true) ? "yes" : "no")
            .note("Flags: w writable, r read-only; m mountable, u not mountable; any others in hexadecimal");
    }

    static long sectors(TrInstance row) {
        return Instances.number(row, SolarisDiskPartitionProvider.sizeInSectors).longValue();
    }

    static String tagName(TrInstance row) {
        int tag = Instances.number(row, SolarisDiskPartitionProvider.tag).intValue();
        return tag < TAGS.size() ? TAGS.get(tag) : "";
    }

    static String flagNames(TrInstance row) {
        int flags = Instances.number(row, SolarisDiskPartitionProvider.flags).intValue();
        return ((flags & READ_ONLY) == 0 ? "w" : "r") + ((flags & UNMOUNTABLE) == 0 ? "m" : "u")
            + ((flags & ~(READ_ONLY | UNMOUNTABLE)) == 0 ? "" : String.format(Locale.ROOT, " 0x%04x", flags));
    }
}
