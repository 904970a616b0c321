package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.solaris.SolarisAuthenticator;
import picocli.CommandLine.Command;

/** {@code build-date}: one call of {@code getLibraryBuildDate}. */
@Command(name = "build-date", description = "The library's build date.")
public final class BuildDateCommand extends Inquiry<String> {
    @Override
    protected String ask() {
        return new SolarisAuthenticator().getLibraryBuildDate();
    }

    @Override
    protected void show(String date, Page out) {
        out.println(date);
    }
}
