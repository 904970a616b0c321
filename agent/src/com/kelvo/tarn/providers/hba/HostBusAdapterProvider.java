package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;

/** Host bus adapters. */
public final class HostBusAdapterProvider {
    private static final List<TrProperty> properties = new ArrayList<>();
    /** The node's world-wide name, a colon and the adapter's index: a String, the key. */
    public static final TrProperty deviceID = TrProperty.append(properties, "deviceID");
    /** The name of the instance's class, a String. */
    public static final TrProperty creationClassName = TrProperty.append(properties, "creationClassName");
    /** The host's name, a String. */
    public static final TrProperty systemName = TrProperty.append(properties, "systemName");
    /** The name of the class of computer systems, a String. */
    public static final TrProperty systemCreationClassName = TrProperty.append(properties, "systemCreationClassName");
    /** A String. */
    public static final TrProperty manufacturer = TrProperty.append(properties, "manufacturer");
    /** A String. */
    public static final TrProperty serialNumber = TrProperty.append(properties, "serialNumber");
    /** A String. */
    public static final TrProperty model = TrProperty.append(properties, "model");
    /** A String. */
    public static final TrProperty modelDescription = TrProperty.append(properties, "modelDescription");
    /** The node's world-wide name, 16 hexadecimal digits: a String. */
    public static final TrProperty name = TrProperty.append(properties, "name");
    /** A String. */
    public static final TrProperty nodeSymbolicName = TrProperty.append(properties, "nodeSymbolicName");
    /** A String. */
    public static final TrProperty hardwareVersion = TrProperty.append(properties, "hardwareVersion");
    /** A String. */
    public static final TrProperty driverVersion = TrProperty.append(properties, "driverVersion");
    /** The version of the adapter's option ROM or BIOS, a String. */
    public static final TrProperty optionRomVersion = TrProperty.append(properties, "optionRomVersion");
    /** A String. */
    public static final TrProperty firmwareVersion = TrProperty.append(properties, "firmwareVersion");
    /** The vendor's number for the adapter, an UnsignedInt32. */
    public static final TrProperty vendorSpecificID = TrProperty.append(properties, "vendorSpecificID");
    /** The driver's file name, a String. */
    public static final TrProperty driverName = TrProperty.append(properties, "driverName");
    /** "Adapter" and the adapter's index, a String. */
    public static final TrProperty caption = TrProperty.append(properties, "caption");
    /** The same as the caption. */
    public static final TrProperty description = TrProperty.append(properties, "description");
    /** The same as the caption. */
    public static final TrProperty elementName = TrProperty.append(properties, "elementName");

    private HostBusAdapterProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_HostBusAdapter", namespace, properties);
    }
}
