package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Table;
import java.io.PrintWriter;

/** A command whose answer is a table. */
abstract class TableInquiry<T> extends Inquiry<T> {
    /**
     * {@return the table that shows the answer}
     *
     * @param answer one that is not missing
     */
    protected abstract Table<?> table(T answer);

    @Override
    protected void show(T answer, Page out) {
        table(answer).print(out);
    }

    @Override
    protected final void print(T answer, PrintWriter out) {
        if (tarn().csv()) {
            table(answer).printCsv(out);
        } else {
            super.print(answer, out);
        }
    }
}
