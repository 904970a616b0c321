import com.kelvo.tarn.cli.Tarn;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.cli.serve.Server;
import com.kelvo.tarn.inventory.InventoryHost;
import com.kelvo.tarn.inventory.Sampler;
import com.kelvo.tarn.replay.ReplayHost;
import java.io.InputStream;
import java.lang.management.ManagementFactory;
import java.lang.management.ThreadMXBean;
import java.lang.reflect.Method;
import java.net.InetSocketAddress;
import java.net.URL;
import java.net.URLConnection;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.function.IntFunction;
import java.util.stream.Collectors;
import java.util.stream.IntStream;
import java.util.stream.LongStream;

/**
 * How long whole commands and a scrape take on a large host, as a ratio to the native calls that they make, how long
 * commands take on one of many paths to one logical unit, as a ratio to as many logical units, and how long a line of
 * watch takes on a large host, as a ratio to one on a small one; in turns in one virtual machine. What commands print
 * goes to standard output, the ratios to standard error.
 */
final class Printing {
    private static final double BOUND = 2.0;
    private static final double PATHS_BOUND = 1.5;
    private static final double GROWTH_BOUND = 1.25;
    private static final int PATHS = 65536;
    private static final int LINES = 100_000;
    private static final double NO_BOUND = Double.POSITIVE_INFINITY;

    private interface Side {
        void run() throws Exception;

        /** What comes before, and takes no time. */
        default void prepare() {
        }
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
            printScrape();
            printWatch(tarn);
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
        System.exit(0); // the server's threads go on
    }

    private static Side command(Method tarn, String command, Path host) {
        return () -> tarn.invoke(null, (Object) String.format(command, host).split(" "));
    }

    /** A host with one remote port and mappings whose LUN goes up so fast. */
    private static String paths(int step) {
        return "{\"uname\": {}, \"kstat\": [], \"hba\": {\"adapters\": [{\"name\": \"a\", \"ports\": [{\"discovered\": "
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

    /** As Prometheus asks; no answer is fresh enough for a second turn. */
    private static void printScrape() throws Exception {
        Library library = new Library(new LibraryLog());
        library.load(network().getBytes(StandardCharsets.UTF_8), "the large host");
        InetSocketAddress server =
            Server.start(new InetSocketAddress("127.0.0.1", 0), library, false, 0, 600, "this");
        URL metrics = new URL("http://127.0.0.1:" + server.getPort() + "/metrics");
        try (Sampler sampler = library.sampler()) {
            Side scrape = () -> {
                URLConnection connection = metrics.openConnection();
                connection.setRequestProperty("Accept", "application/openmetrics-text;version=1.0.0,text/plain;q=0.5");
                connection.setRequestProperty("Accept-Encoding", "gzip");
                try (InputStream answer = connection.getInputStream()) {
                    answer.readAllBytes();
                }
            };
            Side calls = () -> {
                library.computerSystem();
                library.operatingSystem();
                library.logicalDisks();
                library.processors();
                library.cpu();
                library.diskIo();
                library.disks();
                library.identities();
                library.hba(true, false, false);
                sampler.read();
            };
            print("a scrape of 2,000 disks and 65,536 paths to its calls", ratio(20, scrape, calls), BOUND);
        }
    }

    /** Of tables after the first, before which the sampler is opened; of as many lines in all. */
    private static void printWatch(Method tarn) throws Exception {
        for (String options : List.of("", " --json")) {
            long[] shortest = shortest(6, tables(tarn, 10_000, options), tables(tarn, 10_000, " 1" + options),
                                       tables(tarn, 100, options), tables(tarn, 100, " 1" + options));
            print("watch" + options + ", per disk: 10,000 disks to 100",
                  (double) (shortest[0] - shortest[1]) / (LINES - 10_000)
                      / ((double) (shortest[2] - shortest[3]) / (LINES - 100)), GROWTH_BOUND);
        }
    }

    private static Side tables(Method tarn, int disks, String options) {
        byte[] host = samples(disks).getBytes(StandardCharsets.UTF_8);
        return new Side() {
            @Override
            public void prepare() {
                InventoryHost.load(host, "the host that is watched");
            }

            @Override
            public void run() throws Exception {
                tarn.invoke(null, (Object) ("watch 1" + options).split(" "));
            }
        };
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

    /** Eight adapters with a port each, all of which see four ports of an array that shows 2,048 units. */
    private static String network() {
        String remotes = list(4, number -> String.format("{\"attributes\": {\"NodeWWN\": \"50060e8000c3a2b0\", "
            + "\"PortWWN\": \"50060e8000c3a2b%d\", \"PortState\": 2}}", number + 1));
        return "{\"uname\": {}, \"disks\": " + list(2000, Printing::disk) + ", \"kstat\": "
            + list(4000, number -> number < 2000 ? counters(number, "\"data\": {\"reads\": 1}")
                : errors(number - 2000))
            + ", \"hba\": {\"adapters\": " + list(8, adapter -> "{\"name\": \"a" + adapter + "\", \"ports\": "
            + String.format("[{\"attributes\": {\"PortWWN\": \"210000e08b0000%02x\", \"PortState\": 2}, "
                + "\"discovered\": %s}], \"targetMapping\": ", adapter, remotes)
            + list(PATHS / 8, Printing::mapping) + "}") + "}}";
    }

    private static String mapping(int number) {
        int lun = number / 4;
        return String.format("{\"ScsiId\": {\"OSDeviceName\": \"/dev/rdsk/c1t%dd0s2\", \"ScsiTargetNumber\": %d, "
            + "\"ScsiOSLun\": %d}, \"FcpId\": {\"PortWWN\": \"50060e8000c3a2b%d\", \"FcpLun\": %s}}",
            lun % 2000, number % 4, lun, number % 4 + 1, Long.toUnsignedString((long) lun << 48));
    }

    private static String counters(int number, String data) {
        return String.format("{\"ks_module\": \"sd\", \"ks_instance\": %1$d, \"ks_name\": \"sd%1$d\", "
            + "\"ks_class\": \"disk\", \"ks_type\": \"KSTAT_TYPE_IO\", %2$s}", number, data);
    }

    private static String errors(int number) {
        return String.format("{\"ks_module\": \"sderr\", \"ks_instance\": %1$d, \"ks_name\": \"sd%1$d,err\", "
            + "\"ks_class\": \"device_error\", \"ks_type\": \"KSTAT_TYPE_NAMED\", \"data\": {\"Soft Errors\": 1, "
            + "\"Vendor\": \"SEAGATE\", \"Product\": \"ST373207LSUN72G\", \"Revision\": \"045A\", "
            + "\"Serial No\": \"%1$d\", \"Size\": 73400057856}}", number);
    }

    /** A host with so many disks, and so many readings that they make as many lines as on another. */
    private static String samples(int disks) {
        String samples = "\"samples\": " + list(LINES / disks, reading -> String.format(
            "{\"ks_snaptime\": %d, \"reads\": %d, \"rtime\": %d}", 1_000_000_000L * (reading + 1), 50 * reading,
            30_000_000L * reading));
        return "{\"disks\": " + list(disks, Printing::disk) + ", \"kstat\": "
            + list(disks, number -> counters(number, samples)) + "}";
    }

    /** Of the shortest turn of each side. */
    private static double ratio(int turns, Side measured, Side reference) throws Exception {
        long[] shortest = shortest(turns, measured, reference);
        return (double) shortest[0] / shortest[1];
    }

    /** The time of each side's shortest turn; the side that goes first changes. */
    private static long[] shortest(int turns, Side... sides) throws Exception {
        long[] shortest = new long[sides.length];
        Arrays.fill(shortest, Long.MAX_VALUE);
        for (int turn = 0; turn < turns; turn++) {
            for (int i = 0; i < sides.length; i++) {
                int side = (i + turn) % sides.length;
                sides[side].prepare();
                long start = processorTime();
                sides[side].run();
                shortest[side] = Math.min(shortest[side], processorTime() - start);
            }
        }
        return shortest;
    }

    /** Of all of Java's threads, in nanoseconds. */
    private static long processorTime() {
        ThreadMXBean threads = ManagementFactory.getThreadMXBean();
        return LongStream.of(threads.getAllThreadIds()).map(threads::getThreadCpuTime).filter(time -> time > 0).sum();
    }

    private static void print(String what, double ratio, double bound) {
        String verdict = bound == NO_BOUND ? "   none"
            : String.format(Locale.ROOT, "%7.2f  %s", bound, ratio <= bound ? "met" : "NOT MET");
        System.err.println(String.format(Locale.ROOT, "%-64s %7.2f ", what, ratio) + verdict);
    }
}
