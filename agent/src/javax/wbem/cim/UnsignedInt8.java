package javax.wbem.cim;

/** A CIM uint8. */
public final class UnsignedInt8 extends UnsignedInt {
    /**
     * Takes a value.
     *
     * @param value 0 to 255; NumberFormatException for another
     */
    public UnsignedInt8(short value) {
        super(value, 8);
    }
}
