package com.kelvo.tarn;

/** A CIM instance: its class, and a value, or null, for each of the class's properties. */
public final class TrInstance {
    private final TrClass trClass;
    private final Object[] values;

    public TrInstance(TrClass trClass, Object[] values) {
        this.trClass = trClass;
        this.values = values;
    }

    public TrClass getTrClass() {
        return trClass;
    }

    public Object get(TrProperty property) {
        return property.get(values);
    }
}
