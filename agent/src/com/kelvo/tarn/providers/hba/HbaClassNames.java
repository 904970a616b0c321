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

    /** Keeping OS device names leaves them as the HBA library gives them. */
    public HbaClassNames(TrNamespace namespace, boolean keepOsDeviceName) {
        computerSystemClass = new TrClass("Kelvo_ComputerSystem", namespace, List.of());
        hostBusAdapterClass = HostBusAdapterProvider.classIn(namespace);
        hbaPortClass = HbaPortProvider.classIn(namespace);
        hbaDiscoveredPortClass = HbaDiscoveredPortProvider.classIn(namespace);
        fcPortStatisticsClass = FCPortStatisticsProvider.classIn(namespace);
        targetMappingClass = TargetMappingProvider.classIn(namespace);
        this.keepOsDeviceName = keepOsDeviceName;
    }

    public static HbaClassNames get(TrNamespace namespace) {
        return new HbaClassNames(namespace, false);
    }

    public TrClass getComputerSystemClass() {
        return computerSystemClass;
    }

    public TrClass getHostBusAdapterClass() {
        return hostBusAdapterClass;
    }

    public TrClass getHbaPortClass() {
        return hbaPortClass;
    }

    public TrClass getHbaDiscoveredPortClass() {
        return hbaDiscoveredPortClass;
    }

    public TrClass getFCPortStatisticsClass() {
        return fcPortStatisticsClass;
    }

    public TrClass getTargetMappingClass() {
        return targetMappingClass;
    }

    /** The host's name, asked of the library the first time it is needed. */
    public String getSystemName() {
        if (systemName == null) {
            systemName = new SolarisNativeMethod().getComputerSystem().hostName();
        }
        return systemName;
    }

    public boolean isKeepOsDeviceName() {
        return keepOsDeviceName;
    }

    /** The class whose static methods take the library's log lines. */
    public String getNativeMethodClassName() {
        return "com/kelvo/tarn/providers/solaris/SolarisNativeMethod";
    }
}
