package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;
import javax.wbem.cim.UnsignedInt16;

/** Fibre Channel ports. The same descriptors serve local ports and the remote ports that they have discovered. */
public final class HbaPortProvider {
    static final List<TrProperty> properties = new ArrayList<>();
    public static final TrProperty nodeWWN = TrProperty.append(properties, "nodeWWN");
    public static final TrProperty permanentAddress = TrProperty.append(properties, "permanentAddress");
    public static final TrProperty portFcId = TrProperty.append(properties, "portFcId");
    public static final TrProperty portType = TrProperty.append(properties, "portType");
    public static final TrProperty portState = TrProperty.append(properties, "portState");
    public static final TrProperty supportedCOS = TrProperty.append(properties, "supportedCOS");
    public static final TrProperty name = TrProperty.append(properties, "name");
    public static final TrProperty osDeviceName = TrProperty.append(properties, "osDeviceName");
    public static final TrProperty maxSpeed = TrProperty.append(properties, "maxSpeed");
    public static final TrProperty speed = TrProperty.append(properties, "speed");
    public static final TrProperty supportedMaximumTransmissionUnit =
        TrProperty.append(properties, "supportedMaximumTransmissionUnit");
    public static final TrProperty fabricName = TrProperty.append(properties, "fabricName");
    public static final TrProperty deviceID = TrProperty.append(properties, "deviceID");
    public static final TrProperty systemName = TrProperty.append(properties, "systemName");
    public static final TrProperty systemCreationClassName = TrProperty.append(properties, "systemCreationClassName");
    public static final TrProperty operationalStatus = TrProperty.append(properties, "operationalStatus");
    public static final TrProperty creationClassName = TrProperty.append(properties, "creationClassName");
    public static final TrProperty caption = TrProperty.append(properties, "caption");
    public static final TrProperty description = TrProperty.append(properties, "description");
    public static final TrProperty elementName = TrProperty.append(properties, "elementName");
    public static final TrProperty portNumber = TrProperty.append(properties, "portNumber");

    // Port types, as the CIM schema numbers them.
    public static final UnsignedInt16 PORT_TYPE_UNKNOWN = new UnsignedInt16(0);
    public static final UnsignedInt16 PORT_TYPE_OTHER = new UnsignedInt16(1);
    public static final UnsignedInt16 PORT_TYPE_N = new UnsignedInt16(10);
    public static final UnsignedInt16 PORT_TYPE_NL = new UnsignedInt16(11);
    public static final UnsignedInt16 PORT_TYPE_E = new UnsignedInt16(14);
    public static final UnsignedInt16 PORT_TYPE_F = new UnsignedInt16(15);
    public static final UnsignedInt16 PORT_TYPE_FL = new UnsignedInt16(16);

    // Port states, as the HBA API numbers them.
    public static final UnsignedInt16 PORT_STATE_UNKNOWN = new UnsignedInt16(1);
    public static final UnsignedInt16 PORT_STATE_ONLINE = new UnsignedInt16(2);
    public static final UnsignedInt16 PORT_STATE_OFFLINE = new UnsignedInt16(3);
    public static final UnsignedInt16 PORT_STATE_BYPASSED = new UnsignedInt16(4);
    public static final UnsignedInt16 PORT_STATE_DIAGNOSTICS = new UnsignedInt16(5);
    public static final UnsignedInt16 PORT_STATE_LINK_DOWN = new UnsignedInt16(6);
    public static final UnsignedInt16 PORT_STATE_ERROR = new UnsignedInt16(7);
    public static final UnsignedInt16 PORT_STATE_LOOPBACK = new UnsignedInt16(8);

    // Operational states, as the CIM schema numbers them.
    public static final UnsignedInt16 OPERATIONAL_STATUS_UNKNOWN = new UnsignedInt16(0);
    public static final UnsignedInt16 OPERATIONAL_STATUS_OK = new UnsignedInt16(2);
    public static final UnsignedInt16 OPERATIONAL_STATUS_ERROR = new UnsignedInt16(6);
    public static final UnsignedInt16 OPERATIONAL_STATUS_IN_SERVICE = new UnsignedInt16(11);

    // Classes of service, as the CIM schema numbers them.
    public static final UnsignedInt16 SUPPORTED_COS_UNKNOWN = new UnsignedInt16(0);
    public static final UnsignedInt16 SUPPORTED_COS_1 = new UnsignedInt16(1);
    public static final UnsignedInt16 SUPPORTED_COS_2 = new UnsignedInt16(2);
    public static final UnsignedInt16 SUPPORTED_COS_3 = new UnsignedInt16(3);
    public static final UnsignedInt16 SUPPORTED_COS_4 = new UnsignedInt16(4);
    public static final UnsignedInt16 SUPPORTED_COS_6 = new UnsignedInt16(5);
    public static final UnsignedInt16 SUPPORTED_COS_F = new UnsignedInt16(6);

    private HbaPortProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_HbaPort", namespace, properties);
    }
}
