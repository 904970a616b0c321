package javax.wbem.cim;

public final class UnsignedInt8 extends UnsignedInt {
    public UnsignedInt8(short value) {
        super(value, 8);
    }
}
