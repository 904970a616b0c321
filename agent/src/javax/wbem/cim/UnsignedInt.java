package javax.wbem.cim;

import java.math.BigInteger;

/** What the four CIM unsigned integers have in common: a value of up to 64 bits that is never negative. */
public abstract class UnsignedInt {
    private final long bits;

    /** Takes the value's bits, once it is known to have at most that many. */
    UnsignedInt(BigInteger value, int width) {
        if (value.signum() < 0 || value.bitLength() > width) {
            throw new NumberFormatException(value + " does not fit " + width + " unsigned bits");
        }
        bits = value.longValue();
    }

    UnsignedInt(long value, int width) {
        if (value >>> width != 0) {
            throw new NumberFormatException(value + " does not fit " + width + " unsigned bits");
        }
        bits = value;
    }

    /** {@return the value, which is never negative} */
    public BigInteger bigIntegerValue() {
        return new BigInteger(toString());
    }

    /** {@return the value's bits; negative for a 64-bit value of 2^63 and above} */
    public long longValue() {
        return bits;
    }

    /** {@return the value's lower 32 bits; negative for a 32-bit value of 2^31 and above} */
    public int intValue() {
        return (int) bits;
    }

    @Override
    public boolean equals(Object other) {
        return other != null && other.getClass() == getClass() && ((UnsignedInt) other).bits == bits;
    }

    @Override
    public int hashCode() {
        return Long.hashCode(bits);
    }

    @Override
    public String toString() {
        return Long.toUnsignedString(bits);
    }
}
