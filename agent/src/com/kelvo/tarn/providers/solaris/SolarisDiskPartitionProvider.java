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
    private static final List<TrProperty> PROPERTIES = new ArrayList<>();
    /** Such as "c0t0d0s0": a String, the key. */
    public static final TrProperty name = TrProperty.append(PROPERTIES, "name");
    /** The disk that it is a slice of, a String. */
    public static final TrProperty diskName = TrProperty.append(PROPERTIES, "diskName");
    /** Its number in the disk's table of contents, an UnsignedInt32. */
    public static final TrProperty partitionNumber = TrProperty.append(PROPERTIES, "partitionNumber");
    /** An UnsignedInt32, in sectors of 512 bytes. */
    public static final TrProperty sizeInSectors = TrProperty.append(PROPERTIES, "sizeInSectors");
    /** What the slice is meant for, as the label has it: an UnsignedInt16. */
    public static final TrProperty tag = TrProperty.append(PROPERTIES, "tag");
    /** Whether it may be mounted or written, as the label has it: an UnsignedInt16. */
    public static final TrProperty flags = TrProperty.append(PROPERTIES, "flags");
    /** Whether a file system is mounted from it, a Boolean. */
    public static final TrProperty mounted = TrProperty.append(PROPERTIES, "mounted");

    /** The class of the instances. */
    public static final TrClass _class = new TrClass("Kelvo_DiskPartition", TrNamespace.KELVO, PROPERTIES);

    static {
        NativeLibrary.load();
    }

    /**
     * Delivers the slices of the disks that answer, in the order of the system's device directory.
     *
     * @param receiver takes their instances; what it throws ends the walk, and comes from this call
     */
    public native void enumeratePartitions(InstanceReceiver receiver);

    /**
     * {@return the slice's instance; null when there is no such slice, or its disk does not answer}
     *
     * @param partitionName such as "c0t0d0s0"
     */
    public native TrInstance getPartition(String partitionName);

    /**
     * Makes a slice's instance for the library. The numbers are the bits of unsigned ones.
     *
     * @param partitionName such as "c0t0d0s0"
     * @param disk such as "c0t0d0"
     * @param number its number in the disk's table of contents
     * @param sectors its size in sectors of 512 bytes
     * @param partitionTag what it is meant for
     * @param partitionFlags whether it may be mounted or written
     * @param isMounted whether a file system is mounted from it
     * @return the instance
     */
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
