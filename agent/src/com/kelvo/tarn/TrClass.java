package com.kelvo.tarn;

import java.util.List;

/** A CIM class. */
public final class TrClass {
    private final String name;
    private final TrNamespace namespace;
    private final List<TrProperty> properties;

    public TrClass(String name, TrNamespace namespace, List<TrProperty> properties) {
        this.name = name;
        this.namespace = namespace;
        this.properties = List.copyOf(properties);
    }

    public String getName() {
        return name;
    }

    public TrNamespace getNamespace() {
        return namespace;
    }

    public List<TrProperty> getProperties() {
        return properties;
    }

    /** A fresh array with the values of an instance of which nothing is known yet. */
    public Object[] getDefaultValues() {
        return new Object[properties.size()];
    }
}
