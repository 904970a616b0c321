package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.InstanceReceiver;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.solaris.SolarisDiskDriveProvider;
import com.kelvo.tarn.providers.solaris.SolarisDiskPartitionProvider;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Consumer;

/** The library's enumerations of instances as lists, their log lines named after the instance that they are about. */
public final class Library {
    private final LibraryLog log;

    public Library(LibraryLog log) {
        this.log = log;
    }

    public List<TrInstance> disks() {
        return collect(new SolarisDiskDriveProvider()::enumerateDisks, SolarisDiskDriveProvider.name);
    }

    public List<TrInstance> partitions() {
        return collect(new SolarisDiskPartitionProvider()::enumeratePartitions, SolarisDiskPartitionProvider.name);
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
