import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.inventory.Inventory;
import com.kelvo.tarn.inventory.InventoryHost;
import com.kelvo.tarn.inventory.Mount;
import com.kelvo.tarn.inventory.Sample;
import com.kelvo.tarn.inventory.Sampler;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import com.kelvo.tarn.providers.solaris.SolarisScsiInterrogator;
import com.kelvo.tarn.replay.ReplayHost;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.function.Supplier;

/** What the inventory tells in a virtual machine, and samplers that are read on many threads, and closed meanwhile. */
final class Samplers {
    private static final int THREADS = 8;
    private static int passed;
    private static int failed;

    private Samplers() {
    }

    private static void expect(String what, boolean holds) {
        passed += holds ? 1 : 0;
        failed += holds ? 0 : 1;
        if (!holds) {
            System.out.println("failed: " + what);
        }
    }

    private static void tellsWhatTheHostTells() {
        List<Identity> disks = Inventory.identities();
        Identity disk = disks.get(0);
        expect("identity", disks.size() == 12 && disk.disk.equals("c1t0d0") && disk.vendor.equals("SEAGATE")
                && disk.serial.equals("0545B1A0C2") && disk.designator.equals("naa.5000c5000a2b3c41")
                && disk.sizeBytes == 73394847744L && disk.from.equals("device"));
        try (Sampler sampler = Inventory.sampler()) {
            Sample first = sampler.read();
            Sample second = sampler.read();
            expect("disks", first.disks.size() == 13 && first.disks.get(0).disk.equals("c1t0d0")
                    && second.disks.get(0).snaptime > first.disks.get(0).snaptime
                    && second.disks.get(2).errors.soft == 3);
            expect("ports", first.ports.size() == 4 && first.ports.get(1).wwn.equals("210100e08b30a3c2")
                    && first.ports.get(1).lip == null && first.ports.get(1).invalidCrcs == 0
                    && second.ports.get(1).invalidCrcs == 7);
        }
    }

    private static String load(String description) {
        return InventoryHost.load(description.replace('\'', '"').getBytes(StandardCharsets.UTF_8), "it");
    }

    /** What is read once answers both libraries; what is no description is named, and the host before it stays. */
    private static void takesTexts() throws IOException {
        Path file = Files.createTempFile("tarn-\u2603-", ".json");
        try {
            Files.writeString(file, "{\"recordedAt\": \"2026-11-24T10:00:00Z\", \"mnttab\": []}" + " ".repeat(200000));
            byte[] text = ReplayHost.read(file.toString());
            expect("recordedAt", ReplayHost.load(text, "it").equals("2026-11-24T10:00:00Z")
                    && InventoryHost.load(text, "it").equals(ReplayHost.load(file.toString())));
        } finally {
            Files.delete(file);
        }
        List<Supplier<?>> refused = List.of(() -> ReplayHost.read(file.toString()), () -> load("{'mnttab': 1}"),
                () -> InventoryHost.load(null, "it"), () -> load("{}" + " ".repeat(200000) + "x"));
        List<String> reasons = List.of(file + ": No such file", "it: mnttab: ", "no text",
                "it: not JSON: line 1, column 200003");
        for (int i = 0; i < reasons.size(); ++i) {
            try {
                expect("unlike " + reasons.get(i) + ": " + refused.get(i).get(), false);
            } catch (IllegalArgumentException complaint) {
                expect(complaint.getMessage(), complaint.getMessage().startsWith(reasons.get(i)));
            }
        }
        expect("the host before", Inventory.mounts(Duration.ofSeconds(2)).isEmpty() && load("{}") == null);
    }

    /** A mount that tells its sizes, one that hangs, and one of another kind; then a host that tells nothing. */
    private static void tellsOfMounts() {
        load("{'mnttab': ['pool\\t/z\\tzfs\\trw\\t1', 'vol\\t/v\\tvxfs\\trw\\t1', 'd\\t/\\tufs\\trw\\t1', "
                + "'s\\t/t\\ttmpfs\\trw\\t1'], "
                + "'statvfs': {'/z': {'f_frsize': 1024, 'f_blocks': 10, 'f_bfree': 5, 'f_bavail': 4}, "
                + "'/v': {'seconds': 3600}}}");
        List<Mount> mounts = Inventory.mounts(Duration.ofSeconds(2));
        Mount told = mounts.get(0);
        Mount hangs = mounts.get(1);
        expect("mounts", mounts.size() == 2 && told.mountPoint.equals("/z") && told.device.equals("pool")
                && told.fileSystemType.equals("zfs") && told.totalBytes == 10240 && told.freeBytes == 5120
                && told.availableBytes == 4096 && hangs.mountPoint.equals("/v") && hangs.totalBytes == null
                && told.isAnswered && !hangs.isAnswered && Inventory.otherKinds().equals(List.of("tmpfs")));
        load("{}");
        try (Sampler sampler = Inventory.sampler()) {
            expect("no statistics, and no complaint from " + sampler, false);
        } catch (RuntimeException refused) {
            expect("refused: " + refused, refused.getClass() == RuntimeException.class);
        }
    }

    /** A reading answers, or says that the sampler is closed. */
    private static boolean readUntilClosed(Sampler sampler) {
        try {
            while (true) {
                if (sampler.read().disks.size() != 13) {
                    return false;
                }
            }
        } catch (IllegalStateException closed) {
            return closed.getMessage().equals("the sampler is closed");
        }
    }

    /** How many remote ports a fill finds. */
    private static int fill() {
        HbaClassNames names = new HbaClassNames(TrNamespace.KELVO, true);
        int count = 0;
        for (HbaCache.Hba adapter : new HbaCache(false, false).fillHbaCache(names)) {
            for (HbaCache.HbaPort port : adapter.ports()) {
                count += port.discoveredPorts().length;
            }
        }
        return count;
    }

    private static String scan() {
        return new SolarisScsiInterrogator().scsiInterrogate("1T54412345", "1T54412346", "SUN", "CSM200_R");
    }

    /** Readings, and beside them whatever else the two libraries ask the platform. */
    private static void closesUnderReadings() throws Exception {
        int ports = fill();
        String report = scan();
        expect("a fabric and an array", ports > 4 && report.length() > 100);
        ExecutorService threads = Executors.newFixedThreadPool(THREADS);
        for (int round = 0; round < 20; ++round) {
            Sampler sampler = Inventory.sampler();
            List<Callable<Boolean>> questions = List.of(() -> readUntilClosed(sampler),
                    () -> Inventory.identities().size() == 12, () -> readUntilClosed(sampler), () -> fill() == ports,
                    () -> Inventory.mounts().isEmpty(), () -> scan().equals(report));
            List<Future<Boolean>> readings = new ArrayList<>();
            for (int i = 0; i < THREADS; ++i) {
                readings.add(threads.submit(questions.get(i % questions.size())));
            }
            Thread.sleep(round);
            sampler.close();
            sampler.close();
            for (Future<Boolean> reading : readings) {
                expect("reading in round " + round, reading.get());
            }
        }
        threads.shutdown();
    }

    public static void main(String[] arguments) throws Exception {
        tellsWhatTheHostTells();
        closesUnderReadings();
        takesTexts();
        tellsOfMounts();
        System.out.println(passed + " passed, " + failed + " failed");
        System.exit(failed == 0 ? 0 : 1);
    }
}
