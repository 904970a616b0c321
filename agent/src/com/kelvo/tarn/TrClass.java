package com.kelvo.tarn;

import java.util.List;

/** A CIM class. */
public final class TrClass {
    private final String name;
    private final TrNamespace namespace;
    private final List<TrProperty> properties;

    /**
     * A class with these properties.
     *
     * @param name its name, such as "Kelvo_DiskDrive"
     * @param namespace where it is
     * @param properties its properties, each at its own place
     */
    public TrClass(String name, TrNamespace namespace, List<TrProperty> properties) {
        this.name = name;
        this.namespace = namespace;
        this.properties = List.copyOf(properties);
    }

    /** {@return its name, such as "Kelvo_DiskDrive"} */
    public String getName() {
        return name;
    }

    /** {@return where it is} */
    public TrNamespace getNamespace() {
        return namespace;
    }

    /** {@return its properties, in the order of an instance's values} */
    public List<TrProperty> getProperties() {
        return properties;
    }

    /** {@return a fresh array with the values of an instance of which nothing is known yet: all null} */
    public Object[] getDefaultValues() {
        return new Object[properties.size()];
    }
}
