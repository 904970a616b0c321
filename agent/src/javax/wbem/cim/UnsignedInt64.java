package javax.wbem.cim;

import java.math.BigInteger;

/** A CIM uint64. */
public final class UnsignedInt64 extends UnsignedInt {
    /**
     * Takes the value as {@link BigInteger} does: big-endian, with a sign bit, so nine bytes when bit 63 is set.
     *
     * @param value 0 to 2^64 - 1; NumberFormatException for another
     */
    public UnsignedInt64(byte[] value) {
        super(new BigInteger(value), 64);
    }
}
