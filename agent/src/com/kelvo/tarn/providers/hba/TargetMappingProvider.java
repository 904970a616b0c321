package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Which operating-system device leads through which ports to which logical unit. */
public final class TargetMappingProvider {
    private static final List<TrProperty> properties = new ArrayList<>();
    /** The local port, a TrInstance. */
    public static final TrProperty antecedent = TrProperty.append(properties, "antecedent");
    /** The remote port, a TrInstance. */
    public static final TrProperty dependent = TrProperty.append(properties, "dependent");
    /** The number of the controller in device names, an UnsignedInt32. */
    public static final TrProperty scsiBus = TrProperty.append(properties, "scsiBus");
    /** The SCSI target's number, an UnsignedInt32. */
    public static final TrProperty targetId = TrProperty.append(properties, "targetId");
    /** The logical unit as the system numbers it, an UnsignedInt32. */
    public static final TrProperty scsiLun = TrProperty.append(properties, "scsiLun");
    /** The system's device, a String made as {@link HbaCache} was told. */
    public static final TrProperty osDeviceName = TrProperty.append(properties, "osDeviceName");
    /** The logical unit as the array exports it, an UnsignedInt64. */
    public static final TrProperty exportedLUN = TrProperty.append(properties, "exportedLUN");
    /** The remote port's world-wide name, 16 hexadecimal digits: a String. */
    public static final TrProperty discoveredPortWWN = TrProperty.append(properties, "discoveredPortWWN");

    private TargetMappingProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_TargetMapping", namespace, properties);
    }
}
