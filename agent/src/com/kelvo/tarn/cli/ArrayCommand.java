package com.kelvo.tarn.cli;

import com.kelvo.tarn.providers.solaris.SolarisScsiInterrogator;
import java.io.PrintWriter;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

@Command(name = "array", description = "The drive statistics of a disk array with two controllers.",
         footer = "With --json the result is the library's report, a string of fixed-width fields.")
final class ArrayCommand extends Inquiry<String> {
    @Parameters(index = "0", paramLabel = "CONTROLLER1", description = "Identity of the first controller.")
    private String controller1;

    @Parameters(index = "1", paramLabel = "CONTROLLER2", description = "Identity of the second controller.")
    private String controller2;

    @Parameters(index = "2", paramLabel = "VENDOR", description = "Vendor identification of the array's LUNs.")
    private String vendor;

    @Parameters(index = "3", paramLabel = "PRODUCT", description = "Product identification of the array's LUNs.")
    private String product;

    /** Takes the four arguments in their order. */
    void choose(List<String> arguments) {
        controller1 = arguments.get(0);
        controller2 = arguments.get(1);
        vendor = arguments.get(2);
        product = arguments.get(3);
    }

    @Override
    protected String ask() {
        return new SolarisScsiInterrogator().scsiInterrogate(controller1, controller2, vendor, product);
    }

    @Override
    protected void show(String report, PrintWriter out) {
        ArrayReport.print(report, List.of(controller1, controller2), out);
    }
}
