package com.kelvo.tarn.cli.output;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.cli.answers.ArrayReport;
import com.kelvo.tarn.cli.answers.Check;
import com.kelvo.tarn.cli.answers.Fabric;
import com.kelvo.tarn.cli.answers.FileSystemUse;
import com.kelvo.tarn.cli.answers.Instances;
import com.kelvo.tarn.cli.answers.LogicalUnit;
import com.kelvo.tarn.cli.answers.PortError;
import com.kelvo.tarn.providers.hba.HbaPortProvider;
import java.time.Duration;
import java.util.Collection;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What a check found, in words. */
public final class FindingWords {
    /** By the finding's code, of its fact; of any other, the fact itself is the words. */
    private static final Map<String, Function<Object, String>> WORDS = Map.ofEntries(
        Map.entry("file-system-unreadable", why -> why instanceof Duration
            ? "it gave no sizes within " + Units.seconds((Duration) why)
            : Objects.toString(why, "the system does not tell its sizes")),
        Map.entry("file-system-full", use -> full((FileSystemUse) use)),
        Map.entry("processor-offline", state -> "its state is " + state),
        Map.entry("disk-unreadable", none -> "it has I/O counters, but cannot be opened"),
        Map.entry("disk-unlabelled", none -> "its geometry or its label cannot be read"),
        Map.entry("statistics-unreadable", port -> "its counters cannot be read" + wwn((TrInstance) port)),
        Map.entry("port-not-online", port -> state((TrInstance) port)),
        Map.entry("remote-port-not-online", port -> state((TrInstance) port)),
        Map.entry("port-slow", port -> PortWords.of((TrInstance) port, HbaPortProvider.speed) + ", and could run at "
                      + PortWords.of((TrInstance) port, HbaPortProvider.maxSpeed) + wwn((TrInstance) port)),
        Map.entry("port-errors", port -> risen((Map.Entry<?, ?>) port)),
        Map.entry("duplicate-wwn", port -> ((Fabric.Port) port).place() + " has the same"
                      + wwn(((Fabric.Port) port).instance)),
        Map.entry("unit-lost", unit -> "it was there when all was well" + ends(((LogicalUnit) unit).distinctPaths())),
        Map.entry("disk-lost", none -> "it was there when all was well"),
        Map.entry("single-path", unit -> online((LogicalUnit) unit)),
        Map.entry("paths-lost", lost -> ((Check.LostPaths) lost).before.onlinePaths() + " paths were online, "
                      + ((Check.LostPaths) lost).now.onlinePaths() + " are; gone"
                      + ends(gone((Check.LostPaths) lost))),
        Map.entry("fewer-paths", unit -> "others of its array have more than " + online((LogicalUnit) unit)),
        Map.entry("shared-adapter", unit -> "all from one adapter" + ends(((LogicalUnit) unit).online())),
        Map.entry("shared-fabric", unit -> "all through fabric " + ((LogicalUnit) unit).online().get(0).fabric
                      + ends(((LogicalUnit) unit).online())),
        Map.entry("shared-array-port", unit -> "all to one port of the array" + ends(((LogicalUnit) unit).online())),
        Map.entry("recording-old", recordedAt -> recordedAt == null
            ? "it does not say when it was recorded" : "it was recorded at " + recordedAt),
        Map.entry("array-controller-silent", none -> "it counts nothing, and the other controller does"),
        Map.entry("drive-errors", rows -> ((List<?>) rows).stream().map(row -> errors((ArrayReport.Row) row))
                      .collect(Collectors.joining("; "))),
        Map.entry("array-counters", report -> ((ArrayReport) report).isNotCounting()
            ? "its controllers count no blocks, and were just told to (LOG SELECT)"
            : "no controller of that identity reported a drive"));

    /** So many paths of a unit are told. */
    private static final int ENDS = 4;

    private FindingWords() {
    }

    /**
     * {@return what is wrong, without what it is wrong with}
     *
     * @param finding of any kind
     */
    public static String message(Check.Finding finding) {
        return WORDS.getOrDefault(finding.code, fact -> Objects.toString(fact, "it cannot be read"))
            .apply(finding.fact);
    }

    /**
     * {@return what is wrong, without the ports that it is about}
     *
     * @param finding of any kind
     */
    public static String brief(Check.Finding finding) {
        return message(finding).replaceFirst("(, WWN |: [0-9a-f]{16} →).*", "");
    }

    /**
     * {@return what is wrong, by its subject and what an administrator would look for: "NODE LUN 2 (c4t0d2, /oracle)"}
     *
     * @param finding of any kind
     */
    public static String subject(Check.Finding finding) {
        List<String> names = Stream.concat(finding.disks.stream(), finding.mounts.stream())
            .filter(name -> !name.equals(finding.subject)).collect(Collectors.toList());
        return finding.subject + (names.isEmpty() ? "" : " (" + String.join(", ", names) + ")");
    }

    /** Of a port and its errors. */
    private static String risen(Map.Entry<?, ?> port) {
        return ((Map<?, ?>) port.getValue()).entrySet().stream()
            .map(each -> PortWords.errors((PortError) each.getKey()) + " up by "
                + Units.decimal((Double) each.getValue(), 0)).collect(Collectors.joining(", "))
            + wwn((TrInstance) port.getKey());
    }

    private static String state(TrInstance port) {
        return PortWords.of(port, HbaPortProvider.portState) + wwn(port);
    }

    private static String wwn(TrInstance port) {
        String wwn = Instances.name(port, HbaPortProvider.permanentAddress);
        return wwn.isEmpty() ? "" : ", WWN " + wwn;
    }

    private static String online(LogicalUnit unit) {
        return unit.onlinePaths() + " of " + unit.distinctPaths().size() + " paths online"
            + ends(unit.distinctPaths());
    }

    /** The ports at either end of the first paths. */
    private static String ends(Collection<LogicalUnit.Path> paths) {
        return paths.isEmpty() ? "" : ": " + paths.stream().limit(ENDS)
            .map(path -> path.near() + " → " + path.far() + (path.isOnline() ? "" : " (not online)"))
            .collect(Collectors.joining(", ")) + (paths.size() > ENDS ? " and " + (paths.size() - ENDS) + " more" : "");
    }

    /** The paths that were online and are not. */
    private static List<LogicalUnit.Path> gone(Check.LostPaths lost) {
        return lost.before.online().stream().filter(then -> lost.now.online().stream().noneMatch(
            now -> now.near().equals(then.near()) && now.far().equals(then.far()))).collect(Collectors.toList());
    }

    private static String full(FileSystemUse use) {
        return use.isExhausted() ? "nothing is available"
            : Units.percent(use.used().doubleValue(), use.usable().doubleValue()) + " used, "
                + Units.bytes(use.available().doubleValue()) + " available";
    }

    private static String errors(ArrayReport.Row row) {
        return row.controller + " counts unrecovered errors: " + row.unrecovered() + ", request timeouts: "
            + row.timeouts();
    }
}
