package com.kelvo.tarn.cli;

import com.kelvo.tarn.providers.solaris.SolarisAuthenticator;
import java.io.PrintWriter;
import picocli.CommandLine.Command;

@Command(name = "build-date", description = "The library's build date.")
final class BuildDateCommand extends Inquiry<String> {
    @Override
    protected String ask() {
        return new SolarisAuthenticator().getLibraryBuildDate();
    }

    @Override
    protected void show(String date, PrintWriter out) {
        out.println(date);
    }
}
