package com.kelvo.tarn;

/** A CIM namespace. */
public record TrNamespace(String name) {
    /** The namespace that holds the agent's classes. */
    public static final TrNamespace KELVO = new TrNamespace("root/kelvo");
}
