package com.kelvo.tarn.cli;

import com.kelvo.tarn.providers.solaris.SolarisNativeMethod;
import com.kelvo.tarn.providers.solaris.SolarisOperatingSystemProvider.SolarisOperatingSystem;
import java.io.PrintWriter;
import picocli.CommandLine.Command;

@Command(name = "operating-system",
         description = "The operating system with its memory and swap, sampled over a second.")
final class OperatingSystemCommand extends Inquiry<SolarisOperatingSystem> {
    @Override
    protected SolarisOperatingSystem ask() {
        return new SolarisNativeMethod().getOperatingSystem();
    }

    @Override
    protected void show(SolarisOperatingSystem system, PrintWriter out) {
        Table.labels(out, "Name", system.name(), "Host name", system.hostName(), "Version", system.version(),
                     "Memory", size(system.totalPhysicalKB(), system.totalPhysicalKB()),
                     "Free memory", size(system.freePhysicalKB(), system.totalPhysicalKB()),
                     "Swap", size(system.totalSwapKB(), system.totalSwapKB()),
                     "Free swap", size(system.freeSwapKB(), system.totalSwapKB()));
    }

    /** Nothing of nothing is what the library says when the system did not tell. */
    private static String size(long kilobytes, long total) {
        return kilobytes == 0 && total == 0 ? "unknown"
            : String.format("%d KB (%s)", kilobytes, Units.bytes(kilobytes * 1024.0));
    }
}
