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
    private static final int UNRECOVERED = COUNTERS.indexOf("Unrecovered");
    private static final int TIMEOUTS = COUNTERS.indexOf("Timeouts");

    private static final String NOT_COUNTING = "   -2";

    private static final int NUMBER_WIDTH = 5;
    private static final int PLACE_WIDTH = 3;
    private static final int COUNTER_WIDTH = 10;
    private static final int RECORD_WIDTH = COUNTERS.size() * COUNTER_WIDTH;
    private static final String UNPLACED = "?";

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
            return !slot.equals(UNPLACED);
        }

        /** {@return how many errors were not recovered} */
        public long unrecovered() {
            return counters.get(UNRECOVERED);
        }

        /** {@return how many requests timed out} */
        public long timeouts() {
            return counters.get(TIMEOUTS);
        }

        /** {@return the drive's place, such as "tray 0 slot 3"} */
        public String place() {
            return "tray " + tray + " slot " + slot;
        }
    }

    private final String report;
    /** The identities that were asked for. */
    public final List<String> controllers;
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
        rows = report.length() <= NUMBER_WIDTH ? List.of() : decode();
    }

    /** {@return whether the controllers count no blocks yet, and have been told to} */
    public boolean isNotCounting() {
        return report.equals(NOT_COUNTING);
    }

    /**
     * Both controllers' records of each drive, or all of the first controller's, then the second's: the places belong
     * to the first that has any, and when the second has records of another number of drives, theirs are not known.
     */
    private List<Row> decode() {
        int drives = Integer.parseInt(report.substring(0, NUMBER_WIDTH).strip());
        int records = NUMBER_WIDTH + drives * 2 * PLACE_WIDTH + NUMBER_WIDTH;
        int total = (report.length() - records) / RECORD_WIDTH;
        List<Row> decoded = new ArrayList<>();
        for (int i = 0; i < total; i++) {
            int number = total == 2 * drives ? i % 2 * drives + i / 2 : i;
            int controller = number < drives ? 0 : 1;
            int drive = number - controller * drives;
            boolean placed = controller == 0 || total == 2 * drives;
            int place = NUMBER_WIDTH + drive * 2 * PLACE_WIDTH;
            decoded.add(new Row(placed ? field(place, PLACE_WIDTH) : UNPLACED,
                                placed ? field(place + PLACE_WIDTH, PLACE_WIDTH) : UNPLACED,
                                controllers.get(controller), counters(records + number * RECORD_WIDTH)));
        }
        return decoded;
    }

    private List<Long> counters(int start) {
        return COUNTERS.stream()
            .map(counter -> Long.valueOf(field(start + COUNTERS.indexOf(counter) * COUNTER_WIDTH, COUNTER_WIDTH)))
            .collect(Collectors.toList());
    }

    private String field(int start, int width) {
        return report.substring(start, start + width).strip();
    }
}
