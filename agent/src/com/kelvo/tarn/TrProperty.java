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

    /** A new descriptor at the end of a class's properties. */
    public static TrProperty append(List<TrProperty> properties, String name) {
        TrProperty property = new TrProperty(name, properties.size());
        properties.add(property);
        return property;
    }

    public String getName() {
        return name;
    }

    public Object get(Object[] values) {
        return values[index];
    }

    public void set(Object[] values, Object value) {
        values[index] = value;
    }
}
