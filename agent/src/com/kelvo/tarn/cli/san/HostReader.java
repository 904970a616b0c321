package com.kelvo.tarn.cli.san;

/** Asks described hosts, one after the other. */
public interface HostReader {
    /**
     * {@return what a host tells}
     *
     * @param text its description, in UTF-8
     * @param name what complaints call that
     * @throws IllegalArgumentException when it cannot be used; the message names it
     */
    HostFacts read(byte[] text, String name);
}
