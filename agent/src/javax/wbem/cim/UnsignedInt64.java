package javax.wbem.cim;

import java.math.BigInteger;

public final class UnsignedInt64 extends UnsignedInt {
    /** Takes the value as {@link BigInteger} does: big-endian, with a sign bit, so nine bytes when bit 63 is set. */
    public UnsignedInt64(byte[] value) {
        super(new BigInteger(value), 64);
    }
}
