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
    private static final List<TrProperty> properties = new ArrayList<>();
    public static final TrProperty name = TrProperty.append(properties, "name");
    public static final TrProperty diskType = TrProperty.append(properties, "diskType");
    public static final TrProperty deviceIdentifier = TrProperty.append(properties, "deviceIdentifier");
    public static final TrProperty heads = TrProperty.append(properties, "heads");
    public static final TrProperty sectorsPerTrack = TrProperty.append(properties, "sectorsPerTrack");
    public static final TrProperty physicalCylinders = TrProperty.append(properties, "physicalCylinders");
    public static final TrProperty dataCylinders = TrProperty.append(properties, "dataCylinders");
    public static final TrProperty alternateCylinders = TrProperty.append(properties, "alternateCylinders");

    public static final TrClass _class = new TrClass("Kelvo_DiskDrive", TrNamespace.KELVO, properties);

    static {
        NativeLibrary.load();
    }

    public native void enumerateDisks(InstanceReceiver receiver);

    /** Null: no such disk, or none that can be opened. */
    public native TrInstance getDisk(String diskName);

    /** Makes a disk's instance for the library. Type and path may be null; the figures are 16 bits wide. */
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
