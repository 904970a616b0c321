package com.kelvo.tarn.cli;

import java.io.PrintWriter;
import java.util.ArrayList;
import java.util.List;

/** Decodes the interrogator's report string. */
final class ArrayReport {
    private static final String noStatistics = "    0";
    private static final String notCounting = "   -2";

    private static final int numberWidth = 5;
    private static final int placeWidth = 3;
    private static final int counterWidth = 10;
    private static final List<String> counters = List.of(
        "Reads", "Writes", "Blocks", "I/Os", "Recovered", "Unrecovered", "Timeouts", "Retries");

    /** What one controller counted for one drive. */
    private record Row(String tray, String slot, int controller, List<String> counters) {
    }

    private ArrayReport() {
    }

    static void print(String report, PrintWriter out) {
        switch (report) {
            case noStatistics -> out.println("no drive statistics: no controller of that identity reported a drive");
            case notCounting -> out.println("no drive statistics yet: the controllers count I/Os but no blocks, and "
                + "were just told to (LOG SELECT); ask again later");
            default -> {
                Table<Row> table = new Table<Row>().number("Tray", Row::tray).number("Slot", Row::slot)
                    .number("Controller", Row::controller);
                for (int i = 0; i < counters.size(); i++) {
                    int counter = i;
                    table.number(counters.get(i), row -> row.counters().get(counter));
                }
                table.print(rows(report), out);
            }
        }
    }

    /**
     * The first controller's record of each drive, then the second's. The places belong to the first controller that
     * has any; when the second has records of another number of drives, theirs are not known.
     */
    private static List<Row> rows(String report) {
        int drives = Integer.parseInt(report.substring(0, numberWidth).strip());
        int records = numberWidth + drives * 2 * placeWidth + numberWidth;
        int recordWidth = counters.size() * counterWidth;
        int total = (report.length() - records) / recordWidth;
        List<Row> rows = new ArrayList<>();
        for (int i = 0; i < total; i++) {
            int drive = i < drives ? i : i - drives;
            boolean placed = i < drives || total == 2 * drives;
            int place = numberWidth + drive * 2 * placeWidth;
            List<String> values = new ArrayList<>();
            for (int k = 0; k < counters.size(); k++) {
                values.add(field(report, records + i * recordWidth + k * counterWidth, counterWidth));
            }
            rows.add(new Row(placed ? field(report, place, placeWidth) : "?",
                             placed ? field(report, place + placeWidth, placeWidth) : "?",
                             i < drives ? 1 : 2, values));
        }
        return rows;
    }

    private static String field(String report, int start, int width) {
        return report.substring(start, start + width).strip();
    }
}
