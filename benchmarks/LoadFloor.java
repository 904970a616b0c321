package com.kelvo.tarn.cli.san;

import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.inventory.Mount;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.atomic.AtomicReference;

/** What a load cannot do without: reads the descriptions, and makes the native calls whose answers it stores. */
public final class LoadFloor implements HostReader {
    private final LibraryLog log = LibraryLog.ofThisThread();
    private final Library library = new Library(log);

    /**
     * Reads with as many threads as a load does.
     *
     * @param folders where the descriptions are
     * @throws InterruptedException never
     */
    public static void main(String[] folders) throws InterruptedException {
        List<Path> named = new ArrayList<>();
        for (String folder : folders) {
            named.add(Path.of(folder));
        }
        AtomicReference<Throwable> failure = new AtomicReference<>();
        Descriptions descriptions = new Descriptions(named, (path, reason) -> failure.set(new Error(path + reason)));
        List<Thread> threads = new ArrayList<>();
        for (int i = 0; i < Runtime.getRuntime().availableProcessors(); i++) {
            boolean isFirst = i == 0;
            threads.add(new Thread(() -> {
                try {
                    HostReader reader = isFirst ? new LoadFloor() : Isolation.reader(LoadFloor.class);
                    for (Path path = descriptions.next(); path != null; path = descriptions.next()) {
                        reader.read(new DescriptionText(path).text, path.toString());
                    }
                } catch (Throwable failed) {
                    failure.set(failed);
                }
            }));
        }
        threads.forEach(Thread::start);
        for (Thread thread : threads) {
            thread.join();
        }
        if (failure.get() != null) {
            throw new IllegalStateException(failure.get());
        }
    }

    @Override
    public HostFacts read(byte[] text, String name) {
        library.load(text, name);
        library.computerSystem();
        library.logicalDisks().forEach(mounted -> library.logicalDisk(mounted.mountPoint));
        library.knownMounts(Mount.LIMIT);
        library.processors();
        library.diskIo();
        library.disks();
        library.identities();
        library.hba(true, false, false);
        log.take();
        return null;
    }
}
