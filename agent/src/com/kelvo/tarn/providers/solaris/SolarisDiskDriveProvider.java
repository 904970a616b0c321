package com.kelvo.tarn.providers.solaris;

import com.kelvo.tarn.InstanceReceiver;
import com.kelvo.tarn.NativeLibrary;
import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;
import javax.wbem.cim.UnsignedInt32;

/** The host's whole disks. */
public final class SolarisDiskDriveProvider {
    private static final List<TrProperty> PROPERTIES = new ArrayList<>();
    /** Such as "c0t0d0": a String, the key. */
    public static final TrProperty name = TrProperty.append(PROPERTIES, "name");
    /** The first word of the disk's label, a String; null without a label. */
    public static final TrProperty diskType = TrProperty.append(PROPERTIES, "diskType");
    /** The physical device path, a String; null when it cannot be learned. */
    public static final TrProperty deviceIdentifier = TrProperty.append(PROPERTIES, "deviceIdentifier");
    /** An UnsignedInt32, as are all figures below; 0 when the disk does not tell its geometry. */
    public static final TrProperty heads = TrProperty.append(PROPERTIES, "heads");
    /** Sectors of 512 bytes. */
    public static final TrProperty sectorsPerTrack = TrProperty.append(PROPERTIES, "sectorsPerTrack");
    /** All cylinders. */
    public static final TrProperty physicalCylinders = TrProperty.append(PROPERTIES, "physicalCylinders");
    /** Those that hold data. */
    public static final TrProperty dataCylinders = TrProperty.append(PROPERTIES, "dataCylinders");
    /** Those kept in reserve. */
    public static final TrProperty alternateCylinders = TrProperty.append(PROPERTIES, "alternateCylinders");

    /** The class of the instances. */
    public static final TrClass _class = new TrClass("Kelvo_DiskDrive", TrNamespace.KELVO, PROPERTIES);

    static {
        NativeLibrary.load();
    }

    /**
     * Delivers the disks that can be opened, in the order of the system's device directory.
     *
     * @param receiver takes their instances; what it throws ends the walk, and is described on standard error
     */
    public native void enumerateDisks(InstanceReceiver receiver);

    /**
     * {@return the disk's instance; null when there is no such disk, or none that can be opened}
     *
     * @param diskName such as "c0t0d0", without a directory
     */
    public native TrInstance getDisk(String diskName);

    /**
     * Makes a disk's instance for the library. The figures are 16 bits wide.
     *
     * @param diskName such as "c0t0d0"
     * @param type the first word of its label, or null
     * @param devicePath its physical device path, or null
     * @param headCount tracks in a cylinder
     * @param sectorCount sectors in a track
     * @param physicalCylinderCount all cylinders
     * @param dataCylinderCount those that hold data
     * @param alternateCylinderCount those kept in reserve
     * @return the instance
     */
    public TrInstance makeDisk1(String diskName, String type, String devicePath, long headCount, long sectorCount,
                                long physicalCylinderCount, long dataCylinderCount, long alternateCylinderCount) {
        Object[] values = _class.getDefaultValues();
        name.set(values, diskName);
        diskType.set(values, type);
        deviceIdentifier.set(values, devicePath);
        heads.set(values, new UnsignedInt32(headCount));
        sectorsPerTrack.set(values, new UnsignedInt32(sectorCount));
        physicalCylinders.set(values, new UnsignedInt32(physicalCylinderCount));
        dataCylinders.set(values, new UnsignedInt32(dataCylinderCount));
        alternateCylinders.set(values, new UnsignedInt32(alternateCylinderCount));
        return new TrInstance(_class, values);
    }
}
