package com.kelvo.tarn.cli.answers;

import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;

/** The interrogator's report string, decoded: what each controller of an array counted for each drive. */
public final class ArrayReport {
    /** What is counted, in order. */
    public static final List<String> COUNTERS = List.of(
        "Reads", "Writes", "Blocks", "I/Os", "Recovered", "Unrecovered", "Timeouts", "Retries");
    /** The first of the counters that are better 0. */
    public static final int FIRST_ERROR = COUNTERS.indexOf("Recovered");
    /** The place of the unrecovered errors among the counters. */
    public static final int UNRECOVERED = COUNTERS.indexOf("Unrecovered");
    /** The place of the request timeouts among the counters. */
    public static final int TIMEOUTS = COUNTERS.indexOf("Timeouts");

    private static final String notCounting = "   -2";

    private static final int numberWidth = 5;
    private static final int placeWidth = 3;
    private static final int counterWidth = 10;
    private static final int recordWidth = COUNTERS.size() * counterWidth;
    private static final String unplaced = "?";

    /** What one controller counted for one drive. */
    public static final class Row {
        /** The drive's tray; a question mark when its place is not known. */
        public final String tray;
        /** Its slot there; a question mark when its place is not known. */
        public final String slot;
        /** The controller's identity. */
        public final String controller;
        /** As many as {@link #COUNTERS}, unsigned numbers of 32 bits. */
        public final List<Long> counters;

        private Row(String tray, String slot, String controller, List<Long> counters) {
            this.tray = tray;
            this.slot = slot;
            this.controller = controller;
            this.counters = counters;
        }

        /** {@return whether the drive's place is known} */
        public boolean isPlaced() {
            return !slot.equals(unplaced);
        }

        /** {@return the drive's place, such as "tray 0 slot 3"} */
        public String place() {
            return "tray " + tray + " slot " + slot;
        }
    }

    private final String report;
    /** The identities that were asked for. */
    final List<String> controllers;
    /** In the order of the report; empty when there are none. */
    public final List<Row> rows;

    /**
     * Decodes a report.
     *
     * @param report as the library makes it
     * @param controllers the two identities that were asked for
     */
    public ArrayReport(String report, List<String> controllers) {
        this.report = report;
        this.controllers = controllers;
        rows = report.length() <= numberWidth ? List.of() : decode();
    }

    /** {@return whether the controllers count no blocks yet, and have been told to} */
    public boolean isNotCounting() {
        return report.equals(notCounting);
    }

    /**
     * Both controllers' records of each drive, or all of the first controller's, then the second's: the places belong
     * to the first that has any, and when the second has records of another number of drives, theirs are not known.
     */
    private List<Row> decode() {
        int drives = Integer.parseInt(report.substring(0, numberWidth).strip());
        int records = numberWidth + drives * 2 * placeWidth + numberWidth;
        int total = (report.length() - records) / recordWidth;
        List<Row> decoded = new ArrayList<>();
        for (int i = 0; i < total; i++) {
            int number = total == 2 * drives ? i % 2 * drives + i / 2 : i;
            int controller = number < drives ? 0 : 1;
            int drive = number - controller * drives;
            boolean placed = controller == 0 || total == 2 * drives;
            int place = numberWidth + drive * 2 * placeWidth;
            decoded.add(new Row(placed ? field(place, placeWidth) : unplaced,
                                placed ? field(place + placeWidth, placeWidth) : unplaced,
                                controllers.get(controller), counters(records + number * recordWidth)));
        }
        return decoded;
    }

    private List<Long> counters(int start) {
        return COUNTERS.stream()
            .map(counter -> Long.valueOf(field(start + COUNTERS.indexOf(counter) * counterWidth, counterWidth)))
            .collect(Collectors.toList());
    }

    private String field(int start, int width) {
        return report.substring(start, start + width).strip();
    }
}
