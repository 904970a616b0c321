package com.kelvo.tarn.providers.hba;

import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;
import javax.wbem.cim.UnsignedInt16;

/** Fibre Channel ports. The same descriptors serve local ports and the remote ports that they have discovered. */
public final class HbaPortProvider {
    static final List<TrProperty> PROPERTIES = new ArrayList<>();
    /** The world-wide name of the port's node, 16 hexadecimal digits: a String. */
    public static final TrProperty nodeWWN = TrProperty.append(PROPERTIES, "nodeWWN");
    /** The port's world-wide name, 16 hexadecimal digits: a String. */
    public static final TrProperty permanentAddress = TrProperty.append(PROPERTIES, "permanentAddress");
    /** The port's Fibre Channel address, 24 bits: an UnsignedInt32. */
    public static final TrProperty portFcId = TrProperty.append(PROPERTIES, "portFcId");
    /** One of the port types below. */
    public static final TrProperty portType = TrProperty.append(PROPERTIES, "portType");
    /** One of the port states below. */
    public static final TrProperty portState = TrProperty.append(PROPERTIES, "portState");
    /** The classes of service below that the port supports: an array of UnsignedInt16. */
    public static final TrProperty supportedCOS = TrProperty.append(PROPERTIES, "supportedCOS");
    /** The port's symbolic name, a String. */
    public static final TrProperty name = TrProperty.append(PROPERTIES, "name");
    /** The system's device of the port, a String. */
    public static final TrProperty osDeviceName = TrProperty.append(PROPERTIES, "osDeviceName");
    /** The highest speed the port supports, an UnsignedInt64 in bits per second; 0 when unknown. */
    public static final TrProperty maxSpeed = TrProperty.append(PROPERTIES, "maxSpeed");
    /** The speed the port runs at, an UnsignedInt64 in bits per second; 0 when unknown. */
    public static final TrProperty speed = TrProperty.append(PROPERTIES, "speed");
    /** The largest frame, an UnsignedInt64 in bytes. */
    public static final TrProperty supportedMaximumTransmissionUnit =
        TrProperty.append(PROPERTIES, "supportedMaximumTransmissionUnit");
    /** The world-wide name of the fabric, 16 hexadecimal digits: a String. */
    public static final TrProperty fabricName = TrProperty.append(PROPERTIES, "fabricName");
    /** The port's world-wide name again, as the key. */
    public static final TrProperty deviceID = TrProperty.append(PROPERTIES, "deviceID");
    /** The host's name, a String. */
    public static final TrProperty systemName = TrProperty.append(PROPERTIES, "systemName");
    /** The name of the class of computer systems, a String. */
    public static final TrProperty systemCreationClassName = TrProperty.append(PROPERTIES, "systemCreationClassName");
    /** One of the operational statuses below, in an array of UnsignedInt16. */
    public static final TrProperty operationalStatus = TrProperty.append(PROPERTIES, "operationalStatus");
    /** The name of the instance's class, a String. */
    public static final TrProperty creationClassName = TrProperty.append(PROPERTIES, "creationClassName");
    /** "Adapter 0 Port 1", by index; null for a remote port. */
    public static final TrProperty caption = TrProperty.append(PROPERTIES, "caption");
    /** The same as the caption. */
    public static final TrProperty description = TrProperty.append(PROPERTIES, "description");
    /** The same as the caption. */
    public static final TrProperty elementName = TrProperty.append(PROPERTIES, "elementName");
    /** The port's index at its adapter, an UnsignedInt16; null for a remote port. */
    public static final TrProperty portNumber = TrProperty.append(PROPERTIES, "portNumber");

    // Port types, as the CIM schema numbers them.
    /** What the adapter does not tell, or the CIM schema has no number for. */
    public static final UnsignedInt16 PORT_TYPE_UNKNOWN = new UnsignedInt16(0);
    /** What the adapter calls other. */
    public static final UnsignedInt16 PORT_TYPE_OTHER = new UnsignedInt16(1);
    /** A node in a fabric. */
    public static final UnsignedInt16 PORT_TYPE_N = new UnsignedInt16(10);
    /** A node in a loop that a fabric is attached to. */
    public static final UnsignedInt16 PORT_TYPE_NL = new UnsignedInt16(11);
    /** Between two switches. */
    public static final UnsignedInt16 PORT_TYPE_E = new UnsignedInt16(14);
    /** A switch's port for a node. */
    public static final UnsignedInt16 PORT_TYPE_F = new UnsignedInt16(15);
    /** A switch's port for a loop. */
    public static final UnsignedInt16 PORT_TYPE_FL = new UnsignedInt16(16);

    // Port states, as the HBA API numbers them.
    /** What the adapter does not tell. */
    public static final UnsignedInt16 PORT_STATE_UNKNOWN = new UnsignedInt16(1);
    /** In use. */
    public static final UnsignedInt16 PORT_STATE_ONLINE = new UnsignedInt16(2);
    /** Taken offline. */
    public static final UnsignedInt16 PORT_STATE_OFFLINE = new UnsignedInt16(3);
    /** Left out of its loop. */
    public static final UnsignedInt16 PORT_STATE_BYPASSED = new UnsignedInt16(4);
    /** Under diagnosis. */
    public static final UnsignedInt16 PORT_STATE_DIAGNOSTICS = new UnsignedInt16(5);
    /** Without a link. */
    public static final UnsignedInt16 PORT_STATE_LINK_DOWN = new UnsignedInt16(6);
    /** Faulty. */
    public static final UnsignedInt16 PORT_STATE_ERROR = new UnsignedInt16(7);
    /** Sending to itself. */
    public static final UnsignedInt16 PORT_STATE_LOOPBACK = new UnsignedInt16(8);

    // Operational states, as the CIM schema numbers them.
    /** Of a port whose state is unknown. */
    public static final UnsignedInt16 OPERATIONAL_STATUS_UNKNOWN = new UnsignedInt16(0);
    /** Of a port online. */
    public static final UnsignedInt16 OPERATIONAL_STATUS_OK = new UnsignedInt16(2);
    /** Of a port without a link, or faulty. */
    public static final UnsignedInt16 OPERATIONAL_STATUS_ERROR = new UnsignedInt16(6);
    /** Of a port that is offline, bypassed, under diagnosis or in loopback. */
    public static final UnsignedInt16 OPERATIONAL_STATUS_IN_SERVICE = new UnsignedInt16(11);

    // Classes of service, as the CIM schema numbers them.
    /** A class that the schema has no number for. */
    public static final UnsignedInt16 SUPPORTED_COS_UNKNOWN = new UnsignedInt16(0);
    /** Class 1, dedicated connections. */
    public static final UnsignedInt16 SUPPORTED_COS_1 = new UnsignedInt16(1);
    /** Class 2, acknowledged frames. */
    public static final UnsignedInt16 SUPPORTED_COS_2 = new UnsignedInt16(2);
    /** Class 3, datagrams. */
    public static final UnsignedInt16 SUPPORTED_COS_3 = new UnsignedInt16(3);
    /** Class 4, fractional bandwidth. */
    public static final UnsignedInt16 SUPPORTED_COS_4 = new UnsignedInt16(4);
    /** Class 6, acknowledged multicast. */
    public static final UnsignedInt16 SUPPORTED_COS_6 = new UnsignedInt16(5);
    /** Class F, between switches. */
    public static final UnsignedInt16 SUPPORTED_COS_F = new UnsignedInt16(6);

    private HbaPortProvider() {
    }

    static TrClass classIn(TrNamespace namespace) {
        return new TrClass("Kelvo_HbaPort", namespace, PROPERTIES);
    }
}
