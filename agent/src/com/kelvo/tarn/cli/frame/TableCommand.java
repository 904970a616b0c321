package com.kelvo.tarn.cli.frame;

/** A command whose answer is a table, for --csv too. */
public abstract class TableCommand extends InquiryCommand {
    @Override
    final boolean hasTable() {
        return true;
    }
}
