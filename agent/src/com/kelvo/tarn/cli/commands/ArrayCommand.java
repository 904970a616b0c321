package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.ArrayReport;
import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.TableCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import java.util.List;
import java.util.function.Supplier;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code array}: one call of {@code scsiInterrogate}. */
@Command(name = "array", description = "The drive statistics of a disk array with two controllers.",
         footer = "With --json the result is the library's report, a string of fixed-width fields.")
public final class ArrayCommand extends TableCommand {
    @Parameters(index = "0", paramLabel = "CONTROLLER1", description = "Identity of the first controller.")
    private String controller1;

    @Parameters(index = "1", paramLabel = "CONTROLLER2", description = "Identity of the second controller.")
    private String controller2;

    @Parameters(index = "2", paramLabel = "VENDOR", description = "Vendor identification of the array's LUNs.")
    private String vendor;

    @Parameters(index = "3", paramLabel = "PRODUCT", description = "Product identification of the array's LUNs.")
    private String product;

    @Override
    public Answer ask() {
        Answer answer = answer(library(), List.of(controller1, controller2, vendor, product));
        ArrayReport report = new ArrayReport((String) answer.result, List.of(controller1, controller2));
        return !report.rows.isEmpty() || report.isNotCounting() ? answer
            : Answer.missing("no array of the controllers " + controller1 + " and " + controller2
                             + ": none of that identity reported a drive");
    }

    /** What the library reports of an array; its arguments in their order. */
    static Answer answer(Library library, List<String> arguments) {
        String report = library.array(arguments);
        Supplier<ArrayReport> decoded = () -> new ArrayReport(report, arguments.subList(0, 2));
        return Answer.table(report, () -> table(decoded.get())).shownAs(out -> show(decoded.get(), out));
    }

    private static Table<?> table(ArrayReport report) {
        Table<ArrayReport.Row> table = new Table<>(report.rows).number("Tray", row -> row.tray)
            .number("Slot", row -> row.slot).text("Controller", row -> row.controller);
        for (int i = 0; i < ArrayReport.COUNTERS.size(); i++) {
            int counter = i;
            table.number(ArrayReport.COUNTERS.get(i), row -> row.counters.get(counter), row ->
                (counter < ArrayReport.FIRST_ERROR || row.counters.get(counter) == 0 ? "" : Page.TROUBLE)
                    + row.counters.get(counter));
        }
        return report.rows.stream().allMatch(ArrayReport.Row::isPlaced) ? table
            : table.note("?: the places told are those of " + report.controllers.get(0) + "'s drives, and "
                         + report.controllers.get(1) + " has another number of them");
    }

    private static void show(ArrayReport report, Page out) {
        if (report.isNotCounting()) {
            out.println("no drive statistics yet: the controllers count I/Os but no blocks, and were just told to "
                        + "(LOG SELECT); ask again later");
        } else if (report.rows.isEmpty()) {
            out.println("no drive statistics: no controller of that identity reported a drive");
        } else {
            table(report).print(out);
        }
    }
}
