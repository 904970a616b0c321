package javax.wbem.cim;

/** A CIM uint32. */
public final class UnsignedInt32 extends UnsignedInt {
    /**
     * Takes a value.
     *
     * @param value 0 to 4294967295; NumberFormatException for another
     */
    public UnsignedInt32(long value) {
        super(value, 32);
    }
}
