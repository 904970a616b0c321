import com.kelvo.tarn.cli.Tarn;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.replay.ReplayHost;
import java.lang.management.ManagementFactory;
import java.lang.reflect.Method;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.Locale;
import java.util.function.IntFunction;
import java.util.stream.Collectors;
import java.util.stream.IntStream;

/**
 * How long whole commands take on a large host, as a ratio to the native calls that they make, and how long on one of
 * many paths to one logical unit, as a ratio to as many logical units; in turns in one virtual machine. What the
 * commands print goes to standard output, the ratios to standard error.
 */
final class Printing {
    private static final double BOUND = 2.0;
    private static final double PATHS_BOUND = 1.5;
    private static final int PATHS = 65536;
    private static final double NO_BOUND = Double.POSITIVE_INFINITY;

    private interface Side {
        void run() throws Exception;
    }

    private Printing() {
    }

    public static void main(String[] arguments) throws Exception {
        Method tarn = Tarn.class.getDeclaredMethod("run", String[].class);
        tarn.setAccessible(true);
        Path host = Files.createTempFile("tarn", ".json");
        Path units = Files.createTempFile("tarn", ".json");
        try {
            Files.writeString(host, "{\"disks\": " + list(1000, Printing::disk) + ", \"mnttab\": "
                + list(2000, mount -> "\"/dev/dsk/d" + mount + "\\t/export/" + mount + "\\tufs\\trw\\t1\"") + "}");
            ReplayHost.load(host.toString());
            printAgainstCalls(tarn);
            Files.writeString(host, paths(0));
            Files.writeString(units, paths(1));
            for (String command : List.of("compare %1$s %1$s", "--host %1$s map", "--host %1$s map --all")) {
                print("65,536 paths to one unit to as many units, " + command.replaceAll("(--host )?%1.s ?", ""),
                      ratio(4, command(tarn, command, host), command(tarn, command, units)), PATHS_BOUND);
            }
        } finally {
            Files.delete(host);
            Files.delete(units);
        }
    }

    private static Side command(Method tarn, String command, Path host) {
        return () -> tarn.invoke(null, (Object) String.format(command, host).split(" "));
    }

    /** A host with one remote port and mappings whose LUN goes up so fast. */
    private static String paths(int step) {
        return "{\"uname\": {}, \"hba\": {\"adapters\": [{\"name\": \"a\", \"ports\": [{\"discovered\": "
            + "[{\"attributes\": {\"PortWWN\": \"50060e8000c3a2b1\"}}]}], \"targetMapping\": "
            + list(PATHS, number -> String.format(
                "{\"ScsiId\": {\"OSDeviceName\": \"c1t%dd0\"}, \"FcpId\": {\"PortWWN\": \"50060e8000c3a2b1\", "
                + "\"FcpLun\": %s}}", number, Long.toUnsignedString((long) number * step << 48))) + "}]}}";
    }

    private static void printAgainstCalls(Method tarn) throws Exception {
        Library library = new Library(new LibraryLog());
        Side disks = library::disks;
        Side mounts = library::logicalDisks;
        Side printDisks = () -> tarn.invoke(null, (Object) new String[] {"disks"});
        Side printMounts = () -> tarn.invoke(null, (Object) new String[] {"logical-disks"});
        print("1,000 disks, printed to enumerated", ratio(200, printDisks, disks), NO_BOUND);
        print("2,000 mounts, printed to enumerated", ratio(10, printMounts, mounts), BOUND);
        print("1,000 disks and 2,000 mounts, printed to enumerated",
              ratio(10, both(printDisks, printMounts), both(disks, mounts)), BOUND);
    }

    private static Side both(Side first, Side second) {
        return () -> {
            first.run();
            second.run();
        };
    }

    private static String list(int count, IntFunction<String> element) {
        return IntStream.range(0, count).mapToObj(element).collect(Collectors.joining(", ", "[", "]"));
    }

    private static String disk(int number) {
        return String.format("{\"name\": \"c1t%dd0\", \"path\": \"/pci@1f,700000/scsi@2/sd@%x,0\", \"major\": 32, "
            + "\"minor\": %d, \"geometry\": {\"dkg_ncyl\": 14087, \"dkg_acyl\": 2, \"dkg_nhead\": 24, "
            + "\"dkg_nsect\": 424, \"dkg_pcyl\": 14089}, \"vtoc\": {\"v_asciilabel\": \"SUN72G cyl 14087\"}}",
            number, number, 8 * number);
    }

    /** Of the shortest turn of each side; the side that goes first changes. */
    private static double ratio(int turns, Side measured, Side reference) throws Exception {
        long[] shortest = {Long.MAX_VALUE, Long.MAX_VALUE};
        List<Side> sides = List.of(measured, reference);
        for (int turn = 0; turn < turns; turn++) {
            for (int i = 0; i < 2; i++) {
                int side = (i + turn) % 2;
                long start = ManagementFactory.getThreadMXBean().getCurrentThreadCpuTime();
                sides.get(side).run();
                shortest[side] = Math.min(
                    shortest[side], ManagementFactory.getThreadMXBean().getCurrentThreadCpuTime() - start);
            }
        }
        return (double) shortest[0] / shortest[1];
    }

    private static void print(String what, double ratio, double bound) {
        String verdict = bound == NO_BOUND ? "   none"
            : String.format(Locale.ROOT, "%7.2f  %s", bound, ratio <= bound ? "met" : "NOT MET");
        System.err.println(String.format(Locale.ROOT, "%-64s %7.2f ", what, ratio) + verdict);
    }
}
