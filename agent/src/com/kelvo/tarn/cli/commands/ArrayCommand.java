package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.ArrayReport;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import com.kelvo.tarn.providers.solaris.SolarisScsiInterrogator;
import java.util.List;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code array}: one call of {@code scsiInterrogate}. */
@Command(name = "array", description = "The drive statistics of a disk array with two controllers.",
         footer = "With --json the result is the library's report, a string of fixed-width fields.")
public final class ArrayCommand extends TableInquiry<String> {
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
    protected Table<?> table(String answer) {
        ArrayReport report = new ArrayReport(answer, List.of(controller1, controller2));
        Table<ArrayReport.Row> table = new Table<>(report.rows).number("Tray", row -> row.tray)
            .number("Slot", row -> row.slot).text("Controller", row -> row.controller);
        for (int i = 0; i < ArrayReport.COUNTERS.size(); i++) {
            int counter = i;
            table.number(ArrayReport.COUNTERS.get(i), row -> row.counters.get(counter), row ->
                (counter < ArrayReport.FIRST_ERROR || row.counters.get(counter) == 0 ? "" : "!! ")
                    + row.counters.get(counter));
        }
        return report.rows.stream().allMatch(ArrayReport.Row::isPlaced) ? table
            : table.note("?: the places told are those of " + controller1 + "'s drives, and " + controller2
                         + " has another number of them");
    }

    @Override
    protected void show(String answer, Page out) {
        ArrayReport report = new ArrayReport(answer, List.of(controller1, controller2));
        if (report.isNotCounting()) {
            out.println("no drive statistics yet: the controllers count I/Os but no blocks, and were just told to "
                        + "(LOG SELECT); ask again later");
        } else if (report.rows.isEmpty()) {
            out.println("no drive statistics: no controller of that identity reported a drive");
        } else {
            super.show(answer, out);
        }
    }
}
