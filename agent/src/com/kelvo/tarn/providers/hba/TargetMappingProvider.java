package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Which operating-system device leads through which ports to which logical unit. */
public final class TargetMappingProvider {
    private static final List<TrProperty> properties = new ArrayList<>();
    public static final TrProperty antecedent = TrProperty.append(properties, "antecedent");
    public static final TrProperty dependent = TrProperty.append(properties, "dependent");
    public static final TrProperty scsiBus = TrProperty.append(properties, "scsiBus");
    public static final TrProperty targetId = TrProperty.append(properties, "targetId");
    public static final TrProperty scsiLun = TrProperty.append(properties, "scsiLun");
    public static final TrProperty osDeviceName = TrProperty.append(properties, "osDeviceName");
    public static final TrProperty exportedLUN = TrProperty.append(properties, "exportedLUN");
    public static final TrProperty discoveredPortWWN = TrProperty.append(properties, "discoveredPortWWN");

    private TargetMappingProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_TargetMapping", namespace, properties);
    }
}
