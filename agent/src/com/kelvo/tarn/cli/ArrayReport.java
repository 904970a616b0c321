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
    private static final int firstError = counters.indexOf("Recovered");
    private static final String unplaced = "?";

    /** What one controller counted for one drive. */
    private static final class Row {
        private final String tray;
        private final String slot;
        private final String controller;
        private final List<String> counters;

        Row(String tray, String slot, String controller, List<String> counters) {
            this.tray = tray;
            this.slot = slot;
            this.controller = controller;
            this.counters = counters;
        }

        String tray() {
            return tray;
        }

        String slot() {
            return slot;
        }

        String controller() {
            return controller;
        }

        List<String> counters() {
            return counters;
        }
    }

    private ArrayReport() {
    }

    /** The controllers are named by the identities that were asked for. */
    static void print(String report, List<String> controllers, PrintWriter out) {
        if (report.equals(noStatistics)) {
            out.println("no drive statistics: no controller of that identity reported a drive");
            return;
        }
        if (report.equals(notCounting)) {
            out.println("no drive statistics yet: the controllers count I/Os but no blocks, and were just told to "
                        + "(LOG SELECT); ask again later");
            return;
        }
        Table<Row> table = new Table<Row>().number("Tray", Row::tray).number("Slot", Row::slot)
            .text("Controller", Row::controller);
        for (int i = 0; i < counters.size(); i++) {
            int counter = i;
            table.number(counters.get(i), row -> row.counters().get(counter));
        }
        List<Row> rows = rows(report, controllers);
        if (rows.stream().map(Row::slot).anyMatch(unplaced::equals)) {
            table.note(unplaced + ": the places told are those of " + controllers.get(0) + "'s drives, and "
                       + controllers.get(1) + " has another number of them");
        }
        table.print(rows, out);
    }

    /**
     * Both controllers' records of each drive, or all of the first controller's, then the second's: the places belong
     * to the first that has any, and when the second has records of another number of drives, theirs are not known.
     */
    private static List<Row> rows(String report, List<String> controllers) {
        int drives = Integer.parseInt(report.substring(0, numberWidth).strip());
        int records = numberWidth + drives * 2 * placeWidth + numberWidth;
        int recordWidth = counters.size() * counterWidth;
        int total = (report.length() - records) / recordWidth;
        List<Row> rows = new ArrayList<>();
        for (int i = 0; i < total; i++) {
            int record = total == 2 * drives ? i % 2 * drives + i / 2 : i;
            int controller = record < drives ? 0 : 1;
            int drive = record - controller * drives;
            boolean placed = controller == 0 || total == 2 * drives;
            int place = numberWidth + drive * 2 * placeWidth;
            List<String> values = new ArrayList<>();
            for (int k = 0; k < counters.size(); k++) {
                String value = field(report, records + record * recordWidth + k * counterWidth, counterWidth);
                values.add(k < firstError || value.equals("0") ? value : "!! " + value);
            }
            rows.add(new Row(placed ? field(report, place, placeWidth) : unplaced,
                             placed ? field(report, place + placeWidth, placeWidth) : unplaced,
                             controllers.get(controller), values));
        }
        return rows;
    }

    private static String field(String report, int start, int width) {
        return report.substring(start, start + width).strip();
    }
}
