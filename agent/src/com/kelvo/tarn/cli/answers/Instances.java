package com.kelvo.tarn.cli.answers;

import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrProperty;
import java.util.Objects;
import javax.wbem.cim.UnsignedInt16;
import javax.wbem.cim.UnsignedInt;

/** Reads properties of CIM instances. */
public final class Instances {
    private static final UnsignedInt zero = new UnsignedInt16(0);

    private Instances() {
    }

    /**
     * {@return a number; 0 when it was not set}
     *
     * @param instance what has the property
     * @param property one that is a CIM unsigned integer
     */
    public static UnsignedInt number(TrInstance instance, TrProperty property) {
        return Objects.requireNonNullElse((UnsignedInt) instance.get(property), zero);
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

    /** The property as it is; null when it was not set or there is no instance. */
    @SuppressWarnings("unchecked")
    static <V> V value(TrInstance instance, TrProperty property) {
        return instance == null ? null : (V) instance.get(property);
    }
}
