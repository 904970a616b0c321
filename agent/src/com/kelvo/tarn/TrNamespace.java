package com.kelvo.tarn;

/** A CIM namespace. */
public final class TrNamespace {
    /** The namespace that holds the agent's classes. */
    public static final TrNamespace KELVO = new TrNamespace("root/kelvo");

    private final String name;

    public TrNamespace(String name) {
        this.name = name;
    }

    public String getName() {
        return name;
    }
}
