package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Host bus adapters. */
public final class HostBusAdapterProvider {
    private static final List<TrProperty> PROPERTIES = new ArrayList<>();
    /** The node's world-wide name, a colon and the adapter's index: a String, the key. */
    public static final TrProperty deviceID = TrProperty.append(PROPERTIES, "deviceID");
    /** The name of the instance's class, a String. */
    public static final TrProperty creationClassName = TrProperty.append(PROPERTIES, "creationClassName");
    /** The host's name, a String. */
    public static final TrProperty systemName = TrProperty.append(PROPERTIES, "systemName");
    /** The name of the class of computer systems, a String. */
    public static final TrProperty systemCreationClassName = TrProperty.append(PROPERTIES, "systemCreationClassName");
    /** A String. */
    public static final TrProperty manufacturer = TrProperty.append(PROPERTIES, "manufacturer");
    /** A String. */
    public static final TrProperty serialNumber = TrProperty.append(PROPERTIES, "serialNumber");
    /** A String. */
    public static final TrProperty model = TrProperty.append(PROPERTIES, "model");
    /** A String. */
    public static final TrProperty modelDescription = TrProperty.append(PROPERTIES, "modelDescription");
    /** The node's world-wide name, 16 hexadecimal digits: a String. */
    public static final TrProperty name = TrProperty.append(PROPERTIES, "name");
    /** A String. */
    public static final TrProperty nodeSymbolicName = TrProperty.append(PROPERTIES, "nodeSymbolicName");
    /** A String. */
    public static final TrProperty hardwareVersion = TrProperty.append(PROPERTIES, "hardwareVersion");
    /** A String. */
    public static final TrProperty driverVersion = TrProperty.append(PROPERTIES, "driverVersion");
    /** The version of the adapter's option ROM or BIOS, a String. */
    public static final TrProperty optionRomVersion = TrProperty.append(PROPERTIES, "optionRomVersion");
    /** A String. */
    public static final TrProperty firmwareVersion = TrProperty.append(PROPERTIES, "firmwareVersion");
    /** The vendor's number for the adapter, an UnsignedInt32. */
    public static final TrProperty vendorSpecificID = TrProperty.append(PROPERTIES, "vendorSpecificID");
    /** The driver's file name, a String. */
    public static final TrProperty driverName = TrProperty.append(PROPERTIES, "driverName");
    /** "Adapter" and the adapter's index, a String. */
    public static final TrProperty caption = TrProperty.append(PROPERTIES, "caption");
    /** The same as the caption. */
    public static final TrProperty description = TrProperty.append(PROPERTIES, "description");
    /** The same as the caption. */
    public static final TrProperty elementName = TrProperty.append(PROPERTIES, "elementName");

    private HostBusAdapterProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_HostBusAdapter", namespace, PROPERTIES);
    }
}
