package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Which operating-system device leads through which ports to which logical unit. */
public final class TargetMappingProvider {
    private static final List<TrProperty> PROPERTIES = new ArrayList<>();
    /** The local port, a TrInstance. */
    public static final TrProperty antecedent = TrProperty.append(PROPERTIES, "antecedent");
    /** The remote port, a TrInstance. */
    public static final TrProperty dependent = TrProperty.append(PROPERTIES, "dependent");
    /** The number of the controller in device names, an UnsignedInt32. */
    public static final TrProperty scsiBus = TrProperty.append(PROPERTIES, "scsiBus");
    /** The SCSI target's number, an UnsignedInt32. */
    public static final TrProperty targetId = TrProperty.append(PROPERTIES, "targetId");
    /** The logical unit as the system numbers it, an UnsignedInt32. */
    public static final TrProperty scsiLun = TrProperty.append(PROPERTIES, "scsiLun");
    /** The system's device, a String made as {@link HbaCache} was told. */
    public static final TrProperty osDeviceName = TrProperty.append(PROPERTIES, "osDeviceName");
    /** The logical unit as the array exports it, an UnsignedInt64. */
    public static final TrProperty exportedLUN = TrProperty.append(PROPERTIES, "exportedLUN");
    /** The remote port's world-wide name, 16 hexadecimal digits: a String. */
    public static final TrProperty discoveredPortWWN = TrProperty.append(PROPERTIES, "discoveredPortWWN");

    private TargetMappingProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_TargetMapping", namespace, PROPERTIES);
    }
}
