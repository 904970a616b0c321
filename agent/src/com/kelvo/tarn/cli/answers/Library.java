package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.InstanceReceiver;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import com.kelvo.tarn.providers.solaris.SolarisScsiInterrogator;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Consumer;

/** The questions that several commands ask, with the log lines named after the disk that they are about. */
public final class Library {
    private final SolarisNativeMethod host = new SolarisNativeMethod();
    private final LibraryLog log;

    /**
     * Asks the host that answers at the time of each question.
     *
     * @param log where the library's lines come
     */
    public Library(LibraryLog log) {
        this.log = log;
    }

    /** {@return the mounted file systems, without their sizes} */
    public List<SolarisLogicalDisk> logicalDisks() {
        return host.enumerateLogicalDiskNames();
    }

    /**
     * {@return the file system that is mounted there, with its sizes}
     *
     * @param mountPoint where
     */
    public SolarisLogicalDisk logicalDisk(String mountPoint) {
        return host.getLogicalDiskByName(mountPoint);
    }

    /**
     * {@return the same disk with its sizes; as it is when it was unmounted since}
     *
     * @param disk one without
     */
    public SolarisLogicalDisk withSizes(SolarisLogicalDisk disk) {
        try {
            return logicalDisk(disk.mountPoint());
        } catch (RuntimeException gone) {
            return disk;
        }
    }

    /** {@return the processors, by id} */
    public List<SolarisProcessorData> processors() {
        return host.enumerateProcessors();
    }

    /** {@return what each processor spent its ticks on} */
    public List<SolarisCpuUtilizationData> cpu() {
        return host.enumerateCpuUtilizationInfo();
    }

    /** {@return the counters of each disk} */
    public List<SolarisDiskIOInformation> diskIo() {
        return host.enumerateDiskIOInformation();
    }

    /** {@return the whole disks} */
    public List<TrInstance> disks() {
        return collect(new SolarisDiskDriveProvider()::enumerateDisks, SolarisDiskDriveProvider.name);
    }

    /**
     * {@return the disk of that name; null when there is none}
     *
     * @param name such as "c0t0d0"
     */
    public TrInstance disk(String name) {
        return log.about(name, () -> new SolarisDiskDriveProvider().getDisk(name));
    }

    /** {@return the slices of all disks} */
    public List<TrInstance> partitions() {
        return collect(new SolarisDiskPartitionProvider()::enumeratePartitions, SolarisDiskPartitionProvider.name);
    }

    /**
     * {@return the slice of that name; null when there is none}
     *
     * @param name such as "c0t0d0s0"
     */
    public TrInstance partition(String name) {
        return log.about(name, () -> new SolarisDiskPartitionProvider().getPartition(name));
    }

    /** {@return the storage network, with device names as the HBA library gives them} */
    public Fabric fabric() {
        return new Fabric(new HbaCache(false, false).fillHbaCache(new HbaClassNames(TrNamespace.KELVO, true)));
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
