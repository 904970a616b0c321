package com.kelvo.tarn.cli.anonymous;

import java.util.Locale;

/** What a member of a description holds; the table of members names it in lower case, with hyphens. */
enum Kind {
    /** Not in the table: replaced whatever it is. */
    UNKNOWN,
    NUMBER, CONSTANT, CALL, TIME,
    /** What a maker calls hardware or software: it stays, but for the host's own name and serial numbers in it. */
    PRODUCT,
    HOST, USER, PASSWORD, SERIAL, WWN,
    /** Text of somebody's choice. */
    WORDS,
    LABEL, DISK, SLICE, ENTRY, DEVICE, DRIVER, INSTANCE, ADAPTER,
    MOUNT_LINE, MOUNT_POINT, SPECIAL, FILE_SYSTEM_TYPE, OPTIONS,
    /** Bytes in hexadecimal, which are numbers. */
    BITS,
    BYTES, INQUIRY, INQUIRY_00, INQUIRY_80, INQUIRY_83, INQUIRY_C0, DIAGNOSTIC_A0, LOG_3B;

    static Kind named(String name) {
        return valueOf(name.toUpperCase(Locale.ROOT).replace('-', '_'));
    }

    /** Whether a number says what it says by itself. */
    boolean takesNumbers() {
        return this == NUMBER || this == CONSTANT;
    }

    boolean isPage() {
        return compareTo(BITS) >= 0;
    }
}
