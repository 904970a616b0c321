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

    public native SolarisComputerSystem getComputerSystem();

    /** Takes a second: memory and swap are sampled. */
    public native SolarisOperatingSystem getOperatingSystem();

    public native Vector<SolarisLogicalDisk> enumerateLogicalDiskNames();

    public native SolarisLogicalDisk getLogicalDiskByName(String mountPoint);

    public native Vector<SolarisProcessorData> enumerateProcessors();

    /** Null: no such processor. */
    public native SolarisProcessorData getProcessor(int id);

    public native Vector<SolarisCpuUtilizationData> enumerateCpuUtilizationInfo();

    public native SolarisCpuUtilizationData getCpuUtilizationInfo(int id);

    public native Vector<SolarisDiskIOInformation> enumerateDiskIOInformation();

    /** Null: no statistics of a disk of that name. */
    public native SolarisDiskIOInformation getDiskIOInformation(String diskName);

    /** Takes the library's log lines, as does {@link #warn}. */
    public static void info(String message) {
        KelvoLogger.of(SolarisNativeMethod.class).info(message);
    }

    public static void warn(String message) {
        KelvoLogger.of(SolarisNativeMethod.class).warn(message);
    }
}
