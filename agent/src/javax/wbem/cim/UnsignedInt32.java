package javax.wbem.cim;

public final class UnsignedInt32 extends UnsignedInt {
    public UnsignedInt32(long value) {
        super(value, 32);
    }
}
