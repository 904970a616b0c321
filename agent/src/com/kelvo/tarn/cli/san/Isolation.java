package com.kelvo.tarn.cli.san;

import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Set;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/**
 * The agent's classes once more, with native libraries of their own. A library replays one host at a time: whoever is
 * to ask several at once needs several libraries, and a virtual machine loads one for a class loader, and a file only
 * once.
 */
final class Isolation extends ClassLoader {
    private static final String OURS = "com.kelvo.tarn.";
    /** What both sides know: what goes from one to the other. */
    private static final Set<String> SHARED = Stream.of(
        HostReader.class, HostFacts.class, HostFacts.Unit.class, HostTable.class).map(Class::getName)
        .collect(Collectors.toSet());

    static {
        registerAsParallelCapable();
    }

    private final Path copies;

    private Isolation(Path copies) {
        super(Isolation.class.getClassLoader());
        this.copies = copies;
    }

    /**
     * Another reader of that class, for this thread.
     *
     * @throws IOException when there is no room for the libraries in the temporary folder
     * @throws LinkageError when they may not be run from there
     */
    static HostReader reader(Class<? extends HostReader> kind) throws IOException {
        Path copies = Files.createTempDirectory("tarn");
        try {
            Isolation isolation = new Isolation(copies);
            // Once they are loaded, the files need no name any more, and none is left behind whatever ends this.
            for (String loader : new String[] {"NativeLibrary", "inventory.InventoryLibrary"}) {
                Class.forName(OURS + loader, true, isolation);
            }
            return (HostReader) isolation.loadClass(kind.getName()).getConstructor().newInstance();
        } catch (ReflectiveOperationException impossible) {
            throw new IllegalStateException(impossible);
        } finally {
            try (Stream<Path> left = Files.list(copies)) {
                for (Path each : (Iterable<Path>) left::iterator) {
                    Files.delete(each);
                }
            }
            Files.delete(copies);
        }
    }

    @Override
    protected Class<?> loadClass(String name, boolean resolve) throws ClassNotFoundException {
        if (!name.startsWith(OURS) || SHARED.contains(name)) {
            return super.loadClass(name, resolve);
        }
        synchronized (getClassLoadingLock(name)) {
            Class<?> loaded = findLoadedClass(name);
            return loaded != null ? loaded : define(name);
        }
    }

    private Class<?> define(String name) throws ClassNotFoundException {
        try (InputStream in = getParent().getResourceAsStream(name.replace('.', '/') + ".class")) {
            if (in == null) {
                throw new ClassNotFoundException(name);
            }
            byte[] bytes = in.readAllBytes();
            return defineClass(name, bytes, 0, bytes.length);
        } catch (IOException unreadable) {
            throw new ClassNotFoundException(name, unreadable);
        }
    }

    @Override
    protected String findLibrary(String name) {
        String file = System.mapLibraryName(name);
        for (String folder : System.getProperty("java.library.path").split(":")) {
            Path original = Path.of(folder, file);
            if (Files.isRegularFile(original)) {
                try {
                    return Files.copy(original, copies.resolve(file)).toString();
                } catch (IOException failed) {
                    throw new UnsatisfiedLinkError(original + ": " + failed.getMessage());
                }
            }
        }
        return null;
    }
}
