package com.kelvo.tarn;

import java.util.List;

/** The descriptor of one CIM property: its name and its place in an instance's values. */
public final class TrProperty {
    private final String name;
    private final int index;

    private TrProperty(String name, int index) {
        this.name = name;
        this.index = index;
    }

    /**
     * {@return a new descriptor at the end of a class's properties}
     *
     * @param properties those that the class has so far; the new one is added
     * @param name the property's name
     */
    public static TrProperty append(List<TrProperty> properties, String name) {
        TrProperty property = new TrProperty(name, properties.size());
        properties.add(property);
        return property;
    }

    /** {@return the property's name} */
    public String getName() {
        return name;
    }

    /**
     * {@return the property's value, or null}
     *
     * @param values those of an instance
     */
    public Object get(Object[] values) {
        return values[index];
    }

    /**
     * Sets the property.
     *
     * @param values those of an instance
     * @param value the property's, or null
     */
    public void set(Object[] values, Object value) {
        values[index] = value;
    }
}
