package javax.wbem.cim;

/** A CIM uint16. */
public final class UnsignedInt16 extends UnsignedInt {
    /**
     * Takes a value.
     *
     * @param value 0 to 65535; NumberFormatException for another
     */
    public UnsignedInt16(int value) {
        super(value, 16);
    }
}
