package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.san.Store;

/** A command that asks the store, which has to be there, and leaves it as it is. */
abstract class StoreInquiryCommand extends StoreCommand {
    @Override
    final Answer askStore() {
        try (Store store = Store.open(database())) {
            return ask(store);
        }
    }

    /**
     * Asks the store; all that the answer shows is read now.
     *
     * @param store open until this returns
     */
    abstract Answer ask(Store store);
}
