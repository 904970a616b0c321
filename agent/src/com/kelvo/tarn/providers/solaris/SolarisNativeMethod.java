package com.kelvo.tarn.providers.solaris;

import com.kelvo.log.KelvoLogger;
import com.kelvo.tarn.NativeLibrary;
import com.kelvo.tarn.providers.solaris.SolarisComputerSystemProvider.SolarisComputerSystem;
import com.kelvo.tarn.providers.solaris.SolarisDiskIOInformationProvider.SolarisDiskIOInformation;
import com.kelvo.tarn.providers.solaris.SolarisLogicalDiskProvider.SolarisLogicalDisk;
import com.kelvo.tarn.providers.solaris.SolarisOperatingSystemProvider.SolarisOperatingSystem;
import com.kelvo.tarn.providers.solaris.processor.SolarisCpuUtilizationInformationProvider.SolarisCpuUtilizationData;
import com.kelvo.tarn.providers.solaris.processor.SolarisProcessorProvider.SolarisProcessorData;
import java.util.Vector;

/**
 * What the operating system tells of the host. Apart from the first two, the methods throw a RuntimeException with the
 * library's message when the system refuses an answer.
 */
public final class SolarisNativeMethod {
    static {
        NativeLibrary.load();
    }

    /** {@return the host as a computer system, never null} */
    public native SolarisComputerSystem getComputerSystem();

    /** {@return the operating system, never null} Takes a second: memory and swap are sampled. */
    public native SolarisOperatingSystem getOperatingSystem();

    /** {@return the mounted UFS and NFS file systems, their sizes 0} */
    public native Vector<SolarisLogicalDisk> enumerateLogicalDiskNames();

    /**
     * {@return the file system that is mounted there, with its sizes}
     *
     * @param mountPoint such as "/export"
     */
    public native SolarisLogicalDisk getLogicalDiskByName(String mountPoint);

    /** {@return the processors, 128 at most, by id} */
    public native Vector<SolarisProcessorData> enumerateProcessors();

    /**
     * {@return the processor, or null when there is none of that id}
     *
     * @param id the processor's
     */
    public native SolarisProcessorData getProcessor(int id);

    /** {@return what each processor spent its time on} */
    public native Vector<SolarisCpuUtilizationData> enumerateCpuUtilizationInfo();

    /**
     * {@return what the processor spent its time on; a processor that is not there is refused}
     *
     * @param id the processor's
     */
    public native SolarisCpuUtilizationData getCpuUtilizationInfo(int id);

    /** {@return the counters of each disk that the kernel keeps any of} */
    public native Vector<SolarisDiskIOInformation> enumerateDiskIOInformation();

    /**
     * {@return the disk's counters, or null when the kernel keeps none of a disk of that name}
     *
     * @param diskName such as "c0t0d0", without a directory
     */
    public native SolarisDiskIOInformation getDiskIOInformation(String diskName);

    /**
     * Takes the library's log lines, as does {@link #warn}.
     *
     * @param message one line
     */
    public static void info(String message) {
        KelvoLogger.of(SolarisNativeMethod.class).info(message);
    }

    /**
     * Takes those lines that tell of trouble.
     *
     * @param message one line
     */
    public static void warn(String message) {
        KelvoLogger.of(SolarisNativeMethod.class).warn(message);
    }
}
