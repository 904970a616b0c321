package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.InstanceReceiver;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.inventory.Identity;
import com.kelvo.tarn.inventory.Inventory;
import com.kelvo.tarn.inventory.InventoryHost;
import com.kelvo.tarn.inventory.Mount;
import com.kelvo.tarn.inventory.Sample;
import com.kelvo.tarn.inventory.Sampler;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import com.kelvo.tarn.providers.solaris.SolarisAuthenticator;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import com.kelvo.tarn.providers.solaris.SolarisOperatingSystemProvider.SolarisOperatingSystem;
import com.kelvo.tarn.providers.solaris.SolarisScsiInterrogator;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import com.kelvo.tarn.replay.ReplayHost;
import java.io.File;
import java.time.Duration;
import java.time.Instant;
import java.util.ArrayList;
import java.util.List;
import java.util.Objects;
import java.util.function.Consumer;
import java.util.function.Supplier;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** The one door to the native calls. The log lines are named after the disk that they are about. */
public final class Library {
    /** What the question is called that no command asks by itself. */
    static final String MOUNTS = "mounts";

    private final SolarisNativeMethod host = new SolarisNativeMethod();
    private final LibraryLog log;
    private Instant recordedAt;
    private boolean isDescribed;
    /** Lets the host that was loaded last answer the inventory, a library of its own; null once it does. */
    private Runnable pending;
    /** Why the inventory is not there, when it was first asked; null when it is. */
    private LinkageError missing;

    /**
     * Asks the host that answers at the time of each question.
     *
     * @param log where the library's lines come
     */
    public Library(LibraryLog log) {
        this.log = log;
    }

    /** {@return where the lines of the log come} */
    public LibraryLog log() {
        return log;
    }

    /**
     * Lets a host answer from now on.
     *
     * @param path the file with its description
     * @throws IllegalArgumentException when it cannot be read; the message names what is wrong
     */
    public void load(String path) {
        if (new File(path).isFile()) {
            answerBy(ReplayHost.load(path), () -> InventoryHost.load(path));
        } else { // what is none, such as a pipe, can be read but once
            load(ReplayHost.read(path), path);
        }
    }

    /**
     * Lets a host answer from now on.
     *
     * @param text its description, in UTF-8
     * @param name what complaints call that
     * @throws IllegalArgumentException when it cannot be used; the message names what is wrong
     */
    public void load(byte[] text, String name) {
        answerBy(ReplayHost.load(text, name), () -> InventoryHost.load(text, name));
    }

    private void answerBy(String recorded, Runnable loadIntoInventory) {
        recordedAt = recorded == null ? null : Instant.parse(recorded);
        isDescribed = true;
        synchronized (this) {
            pending = loadIntoInventory;
        }
    }

    /** {@return whether a host that was loaded answers, and not the one at hand} */
    boolean isDescribed() {
        return isDescribed;
    }

    /** {@return when the host that was loaded was recorded; null when its description does not say} */
    public Instant recordedAt() {
        return recordedAt;
    }

    /** {@return the host as a computer system} */
    public SolarisComputerSystem computerSystem() {
        return host.getComputerSystem();
    }

    /** {@return the operating system} */
    public SolarisOperatingSystem operatingSystem() {
        return host.getOperatingSystem();
    }

    /** {@return the mounted file systems of the agent's kinds, ufs and nfs, without their sizes} */
    public List<FileSystem> logicalDisks() {
        return host.enumerateLogicalDiskNames().stream().map(FileSystem::new).collect(Collectors.toList());
    }

    /**
     * {@return the file system of the agent's kinds that is mounted there, with its sizes}
     *
     * @param mountPoint where
     */
    public FileSystem logicalDisk(String mountPoint) {
        return new FileSystem(host.getLogicalDiskByName(mountPoint));
    }

    /** The mounted file systems of the kinds that the inventory adds, zfs and vxfs, with their sizes. */
    List<FileSystem> mounts(Duration limit) {
        return listed(() -> Inventory.mounts(limit), limit);
    }

    /**
     * {@return the file system of the inventory's kinds that is mounted there, with its sizes; null when there is none,
     * or where it cannot be asked, which is a line in the log}
     *
     * @param mountPoint where
     */
    public FileSystem knownMount(String mountPoint) {
        Duration limit = Mount.LIMIT;
        return orNone(MOUNTS, () -> listed(() -> Stream.ofNullable(Inventory.mount(mountPoint, limit))
            .collect(Collectors.toList()), limit)).stream().findFirst().orElse(null);
    }

    private List<FileSystem> listed(Supplier<List<Mount>> question, Duration limit) {
        return ofMountTable(question).stream().map(mount -> new FileSystem(mount, limit)).collect(Collectors.toList());
    }

    /**
     * {@return the mounted file systems of the kinds that the inventory adds, zfs and vxfs, with their sizes; none
     * where it cannot be asked, which is a line in the log}
     *
     * @param limit how long each has to tell them; with none, they are listed and not asked
     */
    public List<FileSystem> knownMounts(Duration limit) {
        return orNone(MOUNTS, () -> mounts(limit));
    }

    /** {@return the kind of each mount that is of none of these kinds; the like} */
    public List<String> knownOtherKinds() {
        return orNone(MOUNTS, () -> ofMountTable(Inventory::otherKinds));
    }

    /** The mounted file systems of all these kinds, without their sizes. What cannot be listed is a line in the log. */
    List<FileSystem> knownFileSystems() {
        return Stream.of(orNone("logical-disks", this::logicalDisks), knownMounts(Duration.ZERO)).flatMap(List::stream)
            .collect(Collectors.toList());
    }

    /**
     * {@return the same file system with its sizes; as it is when it was unmounted since}
     *
     * @param disk one without
     */
    public FileSystem withSizes(FileSystem disk) {
        if (disk.isOfInventory()) {
            return Objects.requireNonNullElse(knownMount(disk.mountPoint), disk);
        }
        try {
            return logicalDisk(disk.mountPoint);
        } catch (RuntimeException gone) {
            return disk;
        }
    }

    /** {@return the processors, by id} */
    public List<SolarisProcessorData> processors() {
        return host.enumerateProcessors();
    }

    /**
     * {@return the processor of that id; null when there is none}
     *
     * @param id its number
     */
    public SolarisProcessorData processor(int id) {
        return host.getProcessor(id);
    }

    /** {@return what each processor spent its ticks on} */
    public List<SolarisCpuUtilizationData> cpu() {
        return host.enumerateCpuUtilizationInfo();
    }

    /**
     * {@return what the processor of that id spent its ticks on}
     *
     * @param id its number
     */
    public SolarisCpuUtilizationData cpu(int id) {
        return host.getCpuUtilizationInfo(id);
    }

    /** {@return the counters of each disk} */
    public List<SolarisDiskIOInformation> diskIo() {
        return host.enumerateDiskIOInformation();
    }

    /**
     * {@return the counters of the disk of that name; null when there is none}
     *
     * @param name such as "c0t0d0", with or without a directory
     */
    public SolarisDiskIOInformation diskIo(String name) {
        return host.getDiskIOInformation(DeviceNames.withoutDirectory(name));
    }

    /** {@return the whole disks} */
    public List<TrInstance> disks() {
        return collect(new SolarisDiskDriveProvider()::enumerateDisks, SolarisDiskDriveProvider.name);
    }

    /**
     * {@return the disk of that name; null when there is none}
     *
     * @param name such as "c0t0d0", with or without a directory
     */
    public TrInstance disk(String name) {
        String disk = DeviceNames.withoutDirectory(name);
        return log.about(disk, () -> new SolarisDiskDriveProvider().getDisk(disk));
    }

    /** {@return the slices of all disks} */
    public List<TrInstance> partitions() {
        return collect(new SolarisDiskPartitionProvider()::enumeratePartitions, SolarisDiskPartitionProvider.name);
    }

    /**
     * {@return the slice of that name; null when there is none}
     *
     * @param name such as "c0t0d0s0", with or without a directory
     */
    public TrInstance partition(String name) {
        String slice = DeviceNames.withoutDirectory(name);
        return log.about(slice, () -> new SolarisDiskPartitionProvider().getPartition(slice));
    }

    /** {@return the storage network, with device names as the HBA library gives them, which lead to no disk} */
    public Fabric fabric() {
        return fabric(Disks.NONE);
    }

    /**
     * {@return what each disk is, in their order}
     *
     * @throws RuntimeException when that cannot be told
     * @throws LinkageError when the inventory's library is not there
     */
    public List<Identity> identities() {
        return ofInventory(Inventory::identities);
    }

    /** {@return what each disk is; nothing where that cannot be told, which is a line in the log} */
    public List<Identity> knownIdentities() {
        return orNone("identities", this::identities);
    }

    /** The storage network, with device names as the HBA library gives them. */
    Fabric fabric(Disks disks) {
        HbaCache.Hba[] adapters = hba(true, false, false);
        return new Fabric(disks, adapters, adapters, false);
    }

    /**
     * {@return the storage network, with the disks that it leads to} What the library logs is that of the fill alone.
     *
     * @param adapters what a fill answered, whatever its device names
     * @param ownNames whether these are those of the HBA library
     * @param asAgent whether people are shown these, and not disks
     * @param identities what its disks are, as far as that matters
     */
    public Fabric fabric(HbaCache.Hba[] adapters, boolean ownNames, boolean asAgent, List<Identity> identities) {
        Disks disks = new Disks(orNone("disks", () -> log.unheard(this::disks)), List.of(), List.of(),
                                log.unheard(this::knownFileSystems), identities);
        return new Fabric(disks, adapters, ownNames ? adapters : log.unheard(() -> hba(true, false, false)),
                          asAgent);
    }

    /** What a command lists; what it cannot list is a line in the log. */
    <T> List<T> orNone(String command, Supplier<List<T>> question) {
        try {
            return question.get();
        } catch (RuntimeException | LinkageError failed) {
            log.warn(command + ": " + failed.getMessage());
            return List.of();
        }
    }

    /**
     * {@return the adapters with all that they see; null for one that cannot be read}
     *
     * @param keepNames whether device names are those of the HBA library; else they are made of bus, target and LUN
     * @param leadville whether names in /dev/rdsk/ lose their directory and slice
     * @param forced whether all names do
     */
    public HbaCache.Hba[] hba(boolean keepNames, boolean leadville, boolean forced) {
        return new HbaCache(leadville, forced).fillHbaCache(new HbaClassNames(TrNamespace.KELVO, keepNames));
    }

    /** {@return the lines of the self-test of the HBA library} */
    public List<String> hbaTest() {
        List<String> lines = new ArrayList<>();
        new HbaCache(false, false).testHbaLibrary(lines);
        return lines;
    }

    /**
     * {@return whether the password is the user's}
     *
     * @param user the name
     * @param password in plain text
     */
    public boolean authenticate(String user, String password) {
        return new SolarisAuthenticator().authenticate(user, password);
    }

    /**
     * {@return what reads the activity of disks and ports, to be closed}
     *
     * @throws IllegalArgumentException when the file of the host's description cannot be read once more
     */
    public Sampler sampler() {
        return ofInventory(Inventory::sampler);
    }

    /** Where the inventory is not there, each question is refused with the reason that the first one was given. */
    private <T> T ofInventory(Supplier<T> question) {
        try {
            tellInventory();
            return question.get();
        } catch (LinkageError absent) {
            synchronized (this) {
                missing = missing == null ? absent : missing;
                throw missing;
            }
        }
    }

    /** {@return whether the inventory was asked, and is not there} */
    synchronized boolean lacksInventory() {
        return missing != null;
    }

    /** What a host without a mount table has mounted is nothing, as the agent has it. */
    private <T> List<T> ofMountTable(Supplier<List<T>> question) {
        return ofInventory(() -> {
            try {
                return question.get();
            } catch (RuntimeException unopened) {
                return List.of();
            }
        });
    }

    /** To be called before the inventory is asked. */
    private synchronized void tellInventory() {
        if (pending != null) {
            pending.run();
            pending = null;
        }
    }

    /** {@return one reading of the activity of disks and ports} */
    public Sample sample() {
        try (Sampler sampler = sampler()) {
            return sampler.read();
        }
    }

    /** {@return when the library was built} */
    public String buildDate() {
        return new SolarisAuthenticator().getLibraryBuildDate();
    }

    /**
     * {@return the library's report of an array}
     *
     * @param arguments both controllers' identities, vendor and product
     */
    public String array(List<String> arguments) {
        return new SolarisScsiInterrogator().scsiInterrogate(arguments.get(0), arguments.get(1), arguments.get(2),
                                                             arguments.get(3));
    }

    /** What the library logs while it makes an instance is about that instance. */
    private List<TrInstance> collect(Consumer<InstanceReceiver> enumeration, TrProperty name) {
        List<TrInstance> instances = new ArrayList<>();
        int[] mark = {log.mark()};
        enumeration.accept(instance -> {
            instances.add(instance);
            log.attribute(mark[0], Instances.text(instance, name));
            mark[0] = log.mark();
        });
        return instances;
    }
}
