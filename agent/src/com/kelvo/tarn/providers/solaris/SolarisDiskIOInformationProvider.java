package com.kelvo.tarn.providers.solaris;

/** The kernel's I/O counters of each disk. */
public final class SolarisDiskIOInformationProvider {
    private SolarisDiskIOInformationProvider() {
    }

    /** Bytes since boot; times in nanoseconds. The disk name is empty when the instance has none. */
    public record SolarisDiskIOInformation(
        String instanceName, String diskName, long bytesRead, long bytesWritten, long waitLastUpdate, long runTime) {
    }
}
