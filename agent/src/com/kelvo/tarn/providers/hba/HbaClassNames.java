package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import java.util.List;

/** The CIM classes of one namespace, and what else the library asks as it fills an {@link HbaCache}. */
public final class HbaClassNames {
    private final TrClass computerSystemClass;
    private final TrClass hostBusAdapterClass;
    private final TrClass hbaPortClass;
    private final TrClass hbaDiscoveredPortClass;
    private final TrClass fcPortStatisticsClass;
    private final TrClass targetMappingClass;
    private final boolean keepOsDeviceName;
    private String systemName;

    /**
     * The classes of a namespace.
     *
     * @param namespace where they are
     * @param keepOsDeviceName whether OS device names stay as the HBA library gives them
     */
    public HbaClassNames(TrNamespace namespace, boolean keepOsDeviceName) {
        computerSystemClass = new TrClass("Kelvo_ComputerSystem", namespace, List.of());
        hostBusAdapterClass = HostBusAdapterProvider.classIn(namespace);
        hbaPortClass = HbaPortProvider.classIn(namespace);
        hbaDiscoveredPortClass = HbaDiscoveredPortProvider.classIn(namespace);
        fcPortStatisticsClass = FCPortStatisticsProvider.classIn(namespace);
        targetMappingClass = TargetMappingProvider.classIn(namespace);
        this.keepOsDeviceName = keepOsDeviceName;
    }

    /**
     * {@return the classes of a namespace, with OS device names that are made as {@link HbaCache} was told}
     *
     * @param namespace where they are
     */
    public static HbaClassNames get(TrNamespace namespace) {
        return new HbaClassNames(namespace, false);
    }

    /** {@return the class that stands for the host in the other instances' keys} */
    public TrClass getComputerSystemClass() {
        return computerSystemClass;
    }

    /** {@return the class of adapters} */
    public TrClass getHostBusAdapterClass() {
        return hostBusAdapterClass;
    }

    /** {@return the class of adapters' ports} */
    public TrClass getHbaPortClass() {
        return hbaPortClass;
    }

    /** {@return the class of remote ports} */
    public TrClass getHbaDiscoveredPortClass() {
        return hbaDiscoveredPortClass;
    }

    /** {@return the class of ports' counters} */
    public TrClass getFCPortStatisticsClass() {
        return fcPortStatisticsClass;
    }

    /** {@return the class of logical units as a pair of ports reaches them} */
    public TrClass getTargetMappingClass() {
        return targetMappingClass;
    }

    /** {@return the host's name, asked of the library the first time it is needed} */
    public String getSystemName() {
        if (systemName == null) {
            systemName = new SolarisNativeMethod().getComputerSystem().hostName();
        }
        return systemName;
    }

    /** {@return whether OS device names stay as the HBA library gives them} */
    public boolean isKeepOsDeviceName() {
        return keepOsDeviceName;
    }

    /** {@return the class whose static methods take the library's log lines, with "/" between its packages} */
    public String getNativeMethodClassName() {
        return "com/kelvo/tarn/providers/solaris/SolarisNativeMethod";
    }
}
