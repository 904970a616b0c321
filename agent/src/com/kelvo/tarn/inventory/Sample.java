package com.kelvo.tarn.inventory;

import java.util.List;

/** One reading of a sampler. */
public final class Sample {
    /** The disks that the kernel keeps I/O statistics of, in the chain's order; one that cannot be read is left out. */
    public final List<DiskActivity> disks;
    /** The Fibre Channel ports whose statistics can be read, by adapter and port; empty without an HBA library. */
    public final List<PortTraffic> ports;

    Sample(DiskActivity[] disks, PortTraffic[] ports) {
        this.disks = List.of(disks);
        this.ports = List.of(ports);
    }
}
