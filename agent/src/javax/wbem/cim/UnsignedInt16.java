package javax.wbem.cim;

public final class UnsignedInt16 extends UnsignedInt {
    public UnsignedInt16(int value) {
        super(value, 16);
    }
}
