package com.kelvo.tarn;

/** A CIM instance: its class, and a value, or null, for each of the class's properties. */
public final class TrInstance {
    private final TrClass trClass;
    private final Object[] values;

    /**
     * An instance of these values.
     *
     * @param trClass its class
     * @param values a value, or null, for each of the class's properties; not copied
     */
    public TrInstance(TrClass trClass, Object[] values) {
        this.trClass = trClass;
        this.values = values;
    }

    /** {@return its class} */
    public TrClass getTrClass() {
        return trClass;
    }

    /**
     * {@return the property's value, or null}
     *
     * @param property one of its class's
     */
    public Object get(TrProperty property) {
        return property.get(values);
    }
}
