package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Host bus adapters. */
public final class HostBusAdapterProvider {
    private static final List<TrProperty> properties = new ArrayList<>();
    public static final TrProperty deviceID = TrProperty.append(properties, "deviceID");
    public static final TrProperty creationClassName = TrProperty.append(properties, "creationClassName");
    public static final TrProperty systemName = TrProperty.append(properties, "systemName");
    public static final TrProperty systemCreationClassName = TrProperty.append(properties, "systemCreationClassName");
    public static final TrProperty manufacturer = TrProperty.append(properties, "manufacturer");
    public static final TrProperty serialNumber = TrProperty.append(properties, "serialNumber");
    public static final TrProperty model = TrProperty.append(properties, "model");
    public static final TrProperty modelDescription = TrProperty.append(properties, "modelDescription");
    public static final TrProperty name = TrProperty.append(properties, "name");
    public static final TrProperty nodeSymbolicName = TrProperty.append(properties, "nodeSymbolicName");
    public static final TrProperty hardwareVersion = TrProperty.append(properties, "hardwareVersion");
    public static final TrProperty driverVersion = TrProperty.append(properties, "driverVersion");
    public static final TrProperty optionRomVersion = TrProperty.append(properties, "optionRomVersion");
    public static final TrProperty firmwareVersion = TrProperty.append(properties, "firmwareVersion");
    public static final TrProperty vendorSpecificID = TrProperty.append(properties, "vendorSpecificID");
    public static final TrProperty driverName = TrProperty.append(properties, "driverName");
    public static final TrProperty caption = TrProperty.append(properties, "caption");
    public static final TrProperty description = TrProperty.append(properties, "description");
    public static final TrProperty elementName = TrProperty.append(properties, "elementName");

    private HostBusAdapterProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_HostBusAdapter", namespace, properties);
    }
}
