package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.FileSystem;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.inventory.Mount;
import java.math.BigInteger;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import java.util.Optional;
import java.util.function.Function;
import java.util.stream.Collectors;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

/**
 * {@code logical-disks}: {@code enumerateLogicalDiskNames}, {@code getLogicalDiskByName} for one and for sizes; and the
 * inventory's mounts.
 */
@Command(name = "logical-disks", description = "The mounted UFS and NFS file systems; with --all, ZFS and VxFS, too.",
         footer = "The library computes sizes only for one that is asked for by name; --sizes asks for each. ZFS and "
             + "VxFS are asked all at once, and have five seconds each; one that has not told its sizes by then has "
             + "none, which are null in JSON, as is the blockSize of all of them.")
public final class LogicalDisksCommand extends TableCommand {
    @Parameters(arity = "0..1", paramLabel = "MOUNT-POINT", description = "Only this one of any of these kinds, with "
                + "its sizes.")
    private String mountPoint;

    @Option(names = "--sizes", description = "With the sizes of all, as df shows them.")
    private boolean sizes;

    @Option(names = "--all", description = "ZFS and VxFS as well; with the sizes of all.")
    private boolean all;

    @Override
    public Answer ask() {
        sizes |= all;
        Answer answer = Answer.listing("logical disk", mountPoint, this::listed, this::one, this::table);
        boolean isList = mountPoint == null && !tarn().json() && !tarn().csv();
        for (String line : isList ? leftOut() : List.<String>of()) {
            answer = answer.followedBy(line);
        }
        return answer;
    }

    private List<FileSystem> listed() {
        List<FileSystem> disks = new ArrayList<>(library().logicalDisks());
        if (sizes) {
            disks.replaceAll(library()::withSizes);
        }
        if (all) {
            disks.addAll(library().knownMounts(Mount.LIMIT));
        }
        return disks;
    }

    /** The agent knows some kinds, and the inventory others. */
    private FileSystem one(String mountPoint) {
        try {
            return library().logicalDisk(mountPoint);
        } catch (RuntimeException unknown) {
            return Optional.ofNullable(library().knownMount(mountPoint)).orElseThrow(() -> unknown);
        }
    }

    /** What of the mount table is not shown. */
    private List<String> leftOut() {
        List<String> lines = new ArrayList<>();
        int mounts = all ? 0 : library().knownMounts(Duration.ZERO).size();
        if (mounts > 0) {
            lines.add("Left out: " + counted(mounts, "mount") + " of ZFS and VxFS (--all shows them)");
        }
        List<String> others = library().knownOtherKinds();
        if (!others.isEmpty()) {
            lines.add("Left out: " + counted(others.size(), "mount") + " of other kinds ("
                      + others.stream().sorted().distinct().collect(Collectors.joining(", ")) + ")");
        }
        return lines;
    }

    private static String counted(int number, String noun) {
        return number + " " + noun + (number == 1 ? "" : "s");
    }

    private Table<?> table(List<FileSystem> answer) {
        if (sizes || mountPoint != null) {
            return sizes(answer);
        }
        return new Table<>(answer)
            .text("Mount point", disk -> disk.mountPoint)
            .text("Type", disk -> disk.fileSystemType)
            .text("Device", disk -> disk.device)
            .note("--sizes shows how large and how full they are");
    }

    /** As df has them. */
    static Table<FileSystem> sizes(List<FileSystem> disks) {
        Table<FileSystem> table = new Table<>(disks)
            .text("Mount point", disk -> disk.mountPoint)
            .text("Type", disk -> disk.fileSystemType);
        size(table, "Total", FileSystemUse::total);
        size(table, "Used", FileSystemUse::used);
        size(table, "Available", FileSystemUse::available);
        return table
            .number("Capacity", disk -> known(disk, LogicalDisksCommand::percent), disk -> known(
                disk, use -> (use.isFull(FileSystemUse.FULL) ? Page.TROUBLE : "") + percent(use)))
            .text("Device", disk -> disk.device);
    }

    private static void size(Table<FileSystem> table, String heading, Function<FileSystemUse, BigInteger> size) {
        table.number(heading, disk -> known(disk, size), disk -> {
            BigInteger bytes = known(disk, size);
            return bytes != null ? Units.bytes(bytes.doubleValue()) : disk.silence != null ? "not told" : "unknown";
        });
    }

    private static String percent(FileSystemUse use) {
        return use.usable().signum() == 0 ? "100.0%"
            : Units.percent(use.used().doubleValue(), use.usable().doubleValue());
    }

    /** Null: the system would not tell the sizes, or has not yet. */
    private static <V> V known(FileSystem disk, Function<FileSystemUse, V> fact) {
        return disk.isSized() ? fact.apply(new FileSystemUse(disk)) : null;
    }
}
