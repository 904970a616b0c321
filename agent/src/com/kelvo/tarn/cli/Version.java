package com.kelvo.tarn.cli;

import picocli.CommandLine.IVersionProvider;

/** The version, as the jar's manifest has it. */
final class Version implements IVersionProvider {
    @Override
    public String[] getVersion() {
        return new String[] {"tarn " + Version.class.getPackage().getImplementationVersion()};
    }
}
