package com.kelvo.tarn.providers.solaris;

import com.kelvo.tarn.InstanceReceiver;
import com.kelvo.tarn.NativeLibrary;
import com.kelvo.tarn.TrClass;
import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import java.util.ArrayList;
import java.util.List;
import javax.wbem.cim.UnsignedInt16;
import javax.wbem.cim.UnsignedInt32;

/** The slices of the host's disks. */
public final class SolarisDiskPartitionProvider {
    private static final List<TrProperty> properties = new ArrayList<>();
    public static final TrProperty name = TrProperty.append(properties, "name");
    public static final TrProperty diskName = TrProperty.append(properties, "diskName");
    public static final TrProperty partitionNumber = TrProperty.append(properties, "partitionNumber");
    public static final TrProperty sizeInSectors = TrProperty.append(properties, "sizeInSectors");
    public static final TrProperty tag = TrProperty.append(properties, "tag");
    public static final TrProperty flags = TrProperty.append(properties, "flags");
    public static final TrProperty mounted = TrProperty.append(properties, "mounted");

    public static final TrClass _class = new TrClass("Kelvo_DiskPartition", TrNamespace.KELVO, properties);

    static {
        NativeLibrary.load();
    }

    public native void enumeratePartitions(InstanceReceiver receiver);

    /** Null: no such slice, or one whose disk does not answer. */
    public native TrInstance getPartition(String partitionName);

    /** Makes a slice's instance for the library. The numbers are the bits of unsigned ones. */
    public TrInstance makePartition1(String partitionName, String disk, int number, int sectors, short partitionTag,
                                     short partitionFlags, boolean isMounted) {
        Object[] values = _class.getDefaultValues();
        name.set(values, partitionName);
        diskName.set(values, disk);
        partitionNumber.set(values, new UnsignedInt32(Integer.toUnsignedLong(number)));
        sizeInSectors.set(values, new UnsignedInt32(Integer.toUnsignedLong(sectors)));
        tag.set(values, new UnsignedInt16(Short.toUnsignedInt(partitionTag)));
        flags.set(values, new UnsignedInt16(Short.toUnsignedInt(partitionFlags)));
        mounted.set(values, isMounted);
        return new TrInstance(_class, values);
    }
}
