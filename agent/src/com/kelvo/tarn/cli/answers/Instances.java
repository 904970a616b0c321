package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import java.util.Objects;
import javax.wbem.cim.UnsignedInt16;
import javax.wbem.cim.UnsignedInt;

/** Reads properties of CIM instances. */
public final class Instances {
    /** What stands for a world-wide name where there is none, or where the adapter does not tell. */
    private static final String NO_NAME = "0".repeat(16);
    private static final UnsignedInt ZERO = new UnsignedInt16(0);

    private Instances() {
    }

    /**
     * {@return a number; 0 when it was not set}
     *
     * @param instance what has the property
     * @param property one that is a CIM unsigned integer
     */
    public static UnsignedInt number(TrInstance instance, TrProperty property) {
        return Objects.requireNonNullElse((UnsignedInt) instance.get(property), ZERO);
    }

    /**
     * {@return a text without blanks at its ends; empty when it was not set}
     *
     * @param instance what has the property
     * @param property any
     */
    public static String text(TrInstance instance, TrProperty property) {
        return Objects.toString(instance.get(property), "").strip();
    }

    /**
     * {@return a name, world-wide or other; empty when there is none}
     *
     * @param instance a port or an adapter, or null
     * @param property the name's
     */
    public static String name(TrInstance instance, TrProperty property) {
        return instance == null ? "" : name(text(instance, property));
    }

    /**
     * {@return the name; empty when it is what stands for none}
     *
     * @param name a world-wide one or another, or null
     */
    public static String name(String name) {
        return name == null || name.equals(NO_NAME) ? "" : name;
    }

    /** The property as it is; null when it was not set or there is no instance. */
    @SuppressWarnings("unchecked")
    static <V> V value(TrInstance instance, TrProperty property) {
        return instance == null ? null : (V) instance.get(property);
    }
}
