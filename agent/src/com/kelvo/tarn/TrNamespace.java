package com.kelvo.tarn;

/** A CIM namespace. */
public final class TrNamespace {
    /** The namespace that holds the agent's classes. */
    public static final TrNamespace KELVO = new TrNamespace("root/kelvo");

    private final String name;

    /**
     * The namespace of that name.
     *
     * @param name such as "root/kelvo"
     */
    public TrNamespace(String name) {
        this.name = name;
    }

    /** {@return its name, such as "root/kelvo"} */
    public String getName() {
        return name;
    }
}
