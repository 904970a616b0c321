package com.kelvo.tarn.cli.san;

/** Asks described hosts, one after the other. */
public interface HostReader {
    /**
     * {@return what a host tells}
     *
     * @param path its description
     * @throws IllegalArgumentException when it cannot be used; the message names it
     */
    HostFacts read(String path);
}
