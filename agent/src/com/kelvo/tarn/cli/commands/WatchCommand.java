package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Activity;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.Paths;
import com.kelvo.tarn.cli.answers.PayloadRates;
import com.kelvo.tarn.cli.answers.PortLoad;
import com.kelvo.tarn.cli.frame.Interruption;
import com.kelvo.tarn.cli.frame.TarnOptions;
import com.kelvo.tarn.cli.output.ActivityTables;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.RateTable;
import com.kelvo.tarn.cli.output.Screen;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.cli.output.Terminal;
import com.kelvo.tarn.cli.output.Units;
import com.kelvo.tarn.inventory.Sampler;
import java.io.PrintWriter;
import java.time.Instant;
import java.time.temporal.ChronoUnit;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.concurrent.Callable;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.ParentCommand;
import picocli.CommandLine.Spec;

/** {@code watch}: the {@link Activity} of disks, logical units and ports, a table an interval. */
@Command(name = "watch", description = "What disks do, a table an interval: the first since boot, each other since the "
             + "one before it.",
         footer = "The columns are those of iostat -xn. Two exclamation marks stand before errors that grew, and "
             + "before what is slower than --slow says. Intervals are measured by the kernel's clock. A host "
             + "description is read through without waiting, as far as it has readings. SIGINT ends it; the exit "
             + "status is 0 then, too.")
public final class WatchCommand implements Callable<Integer> {
    @ParentCommand
    private TarnOptions tarn;

    @Spec
    private CommandSpec spec;

    @Parameters(index = "0", arity = "0..1", paramLabel = "SECONDS", description = "How long an interval is, such as 5 "
            + "or 0.5; without it, there is one table.")
    private String seconds;

    @Parameters(index = "1", arity = "0..1", paramLabel = "COUNT", description = "How many tables there are; without "
            + "it, they go on until SIGINT.")
    private Integer count;

    @Option(names = "--ports", description = "Not disks but Fibre Channel ports: frames and megabytes a second, per "
            + "cent of what the link can carry, and errors in the interval.")
    private boolean ports;

    @Option(names = "--units", description = "Not disks but logical units, each summed over its paths, with the share "
            + "of its commands that took each.")
    private boolean units;

    @Option(names = "--disks", description = "Disks as well, beside --ports or --units.")
    private boolean disks;

    @Option(names = "--errors", description = "Also a disk's errors in the interval, by kind.")
    private boolean errors;

    @Option(names = "--top", paramLabel = "N", description = "Only the first N rows; without --sort, the busiest.")
    private Integer top;

    @Option(names = "--sort", paramLabel = "COLUMN", description = "The largest numbers of this column first, such as "
            + "asvc_t, or the names in order, as device.")
    private String sort;

    @Option(names = "--nonzero", description = "Leave out rows of which every number is zero.")
    private boolean nonzero;

    @Option(names = "--slow", paramLabel = "MS", description = "Mark service (asvc_t) that takes longer than this many "
            + "milliseconds; without it, 30.")
    private String slow;

    @Option(names = "--screen", description = "On a terminal, each table takes the place of the one before it.")
    private boolean screen;

    /** One of the tables of an interval. */
    private final class Part<R> {
        private final String member;
        private final List<R> rows;
        private final Table<R> table;

        private Part(String member, String busiest, RateTable<R> columns, List<R> all, Object... lead) {
            this.member = member;
            String order = sort == null && top != null ? busiest : sort;
            rows = columns.sorted(all, order).stream().filter(row -> !nonzero || columns.isNonzero(row))
                .limit(top == null ? Long.MAX_VALUE : top).collect(Collectors.toList());
            table = columns.of(rows, lead);
        }
    }

    private ActivityTables tables;
    /** What the storage network is good for: null when no part needs it. */
    private Paths paths;
    private PayloadRates payloads;
    private Instant began;
    private long beganAt;

    @Override
    public Integer call() {
        tarn.refuseUnsuitable(spec.commandLine(), true);
        double interval = seconds == null ? 0 : positive("SECONDS", seconds);
        double limit = slow == null ? 30 : positive("--slow", slow);
        disks |= !ports && !units;
        refuseBadNumbers();
        tables = new ActivityTables(limit, errors);
        if (sort != null && columns().noneMatch(sort::equalsIgnoreCase)) {
            throw refusal("--sort: '" + sort + "' is no column; there are "
                          + columns().distinct().collect(Collectors.joining(" ")));
        }
        tarn.chooseHost(spec.commandLine());
        try (Interruption interruption = new Interruption(); Sampler sampler = tarn.library().sampler()) {
            watch(sampler, interruption, (long) (interval * 1e9));
            return 0;
        } catch (IllegalArgumentException unreadable) {
            throw new ParameterException(spec.commandLine(), unreadable.getMessage(), unreadable);
        } catch (RuntimeException | LinkageError failed) {
            Page.complain(spec.commandLine().getErr(),
                          Objects.requireNonNullElse(failed.getMessage(), failed.toString()));
            return spec.exitCodeOnExecutionException();
        }
    }

    private void refuseBadNumbers() {
        if (count != null && count < 1) {
            throw refusal("COUNT: '" + count + "' is no positive number");
        }
        if (top != null && top < 1) {
            throw refusal("--top: '" + top + "' is no positive number");
        }
        if (tarn.csv() && Stream.of(disks, ports, units).filter(part -> part).count() > 1) {
            throw refusal("--csv goes with one of --disks, --ports and --units");
        }
    }

    private double positive(String name, String given) {
        double number = given.matches("\\d{1,9}\\.?\\d{0,9}|\\.\\d{1,9}") ? Double.parseDouble(given) : 0;
        if (number <= 0) {
            throw refusal(name + ": '" + given + "' is no positive number");
        }
        return number;
    }

    private ParameterException refusal(String message) {
        return new ParameterException(spec.commandLine(), message);
    }

    private Stream<String> columns() {
        return Stream.of(disks ? tables.disks(true) : null, ports ? tables.ports(true) : null,
                         units ? tables.units() : null)
            .filter(Objects::nonNull).flatMap(table -> table.columns().stream());
    }

    /** A description is stepped through by reading, and ends where it has nothing more to tell. */
    private void watch(Sampler sampler, Interruption interruption, long nanoseconds) {
        Activity activity = new Activity();
        int most = nanoseconds == 0 ? 1 : count == null ? Integer.MAX_VALUE : count;
        long next = System.nanoTime();
        for (int shown = 0; shown < most; shown++) {
            if (shown > 0 && !tarn.isReplayed()) {
                next = Math.max(next + nanoseconds, System.nanoTime());
            }
            if (interruption.comesBefore(tarn.isReplayed() ? System.nanoTime() : next)) {
                return;
            }
            if (shown == 0 && (ports || units)) {
                askFabric();
            }
            Activity.Interval interval =
                activity.next(sampler.read(), wwn -> payloads == null ? null : payloads.of(wwn));
            if (tarn.isReplayed() && interval.isNothing()) {
                return;
            }
            if (interval.isOther() && (ports || units)) {
                askFabric();
            }
            show(interval);
            if (spec.commandLine().getOut().checkError()) {
                return;
            }
        }
    }

    private void askFabric() {
        Library library = tarn.library();
        Fabric fabric = library.log().unheard(
            () -> library.fabric(library.hba(true, false, false), true, false, List.of()));
        paths = new Paths(fabric);
        payloads = new PayloadRates(fabric);
    }

    private Instant at(Activity.Interval interval) {
        if (!tarn.isReplayed()) {
            return Instant.now().truncatedTo(ChronoUnit.MILLIS);
        }
        if (interval.isFirst) {
            began = tarn.library().recordedAt();
            beganAt = interval.snaptime;
        }
        return began == null ? null : began.plusNanos(interval.snaptime - beganAt)
            .plus(500, ChronoUnit.MICROS).truncatedTo(ChronoUnit.MILLIS);
    }

    private void show(Activity.Interval interval) {
        PrintWriter out = spec.commandLine().getOut();
        PrintWriter err = spec.commandLine().getErr();
        Instant at = at(interval);
        List<Part<?>> parts = parts(interval, at);
        String gone =
            interval.gone.isEmpty() ? "" : "gone since the reading before: " + String.join(", ", interval.gone);
        boolean forPrograms = tarn.json() || tarn.csv();
        if (forPrograms && !gone.isEmpty()) {
            Page.complain(err, Page.printable(gone));
            err.flush();
        }
        if (tarn.json()) {
            Json.printLine(document(interval, at, parts), out);
        } else if (tarn.csv() && interval.isFirst) {
            parts.get(0).table.printCsv(out, tarn.csvRaw());
        } else if (tarn.csv()) {
            parts.get(0).table.printCsvRows(out, tarn.csvRaw());
        } else if (screen && Terminal.ofStandardOutput().isTerminal()) {
            new Screen().show(out, page -> print(interval, at, parts, gone, page));
        } else {
            Page page = new Page(out, Terminal.ofStandardOutput());
            if (!interval.isFirst) {
                page.println();
            }
            print(interval, at, parts, gone, page);
        }
    }

    private List<Part<?>> parts(Activity.Interval interval, Instant at) {
        Object[] lead = {"at", at, "seconds", interval.seconds};
        boolean isFirst = interval.isFirst;
        List<Part<?>> parts = new ArrayList<>();
        if (disks) {
            Part<Activity.Disk> part = new Part<>("disks", "%b", tables.disks(isFirst), interval.disks, lead);
            part.table.exact("instance", disk -> disk.instance).exact("reset", disk -> disk.reset)
                .gloss(disk -> tables.remark(disk, isFirst));
            parts.add(part);
        }
        if (ports) {
            Part<PortLoad> part = new Part<>("ports", "rxMB/s", tables.ports(isFirst), interval.ports, lead);
            part.table.exact("reset", port -> port.reset).gloss(port -> port.reset ? "counters reset" : "");
            parts.add(part);
        }
        if (units) {
            Part<Activity.Unit> part = new Part<>("units", "%b", tables.units(), interval.units(paths), lead);
            part.table.exact("reset", unit -> unit.reset).exact("paths", ActivityTables::remark)
                .gloss(ActivityTables::remark);
            parts.add(part);
        }
        return parts;
    }

    private Object document(Activity.Interval interval, Instant at, List<Part<?>> parts) {
        Map<String, Object> document = Json.object("seconds", interval.seconds, "at", Objects.toString(at, null));
        parts.forEach(part -> document.put(part.member, !errors || !part.member.equals("disks") ? part.rows
            : part.rows.stream().map(row -> Json.with(row, "errors", ((Activity.Disk) row).errors))
                .collect(Collectors.toList())));
        return document;
    }

    private static void print(Activity.Interval interval, Instant at, List<Part<?>> parts, String gone, Page page) {
        String time = interval.isFirst ? "Since boot" : interval.seconds == null ? "In an unknown time"
            : "In " + Units.decimal(interval.seconds, 3) + " seconds";
        page.println(time + (at == null ? "" : ", to " + at));
        parts.forEach(part -> part.table.print(page));
        if (!gone.isEmpty()) {
            page.printFolded(gone);
        }
    }
}
