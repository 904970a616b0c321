package com.kelvo.tarn.cli;

/** Runs commands one after the other, so that a class-data archive made as the virtual machine ends serves them all. */
final class Training {
    private Training() {
    }

    /** Each argument is a command, its words separated by single blanks. */
    public static void main(String[] commands) {
        for (String command : commands) {
            Tarn.run(command.split(" "));
        }
    }
}
