package com.kelvo.tarn.cli.frame;

import picocli.CommandLine.ParameterException;

/** A question to the library. */
public interface Inquiry {
    /**
     * Makes the native call, or the calls.
     *
     * @return what came of it
     * @throws Exception what the call has thrown, which is shown and is no failure of the command's own
     */
    Answer ask() throws Exception;

    /** {@return what came of asking, whatever that is} */
    default Answer answer() {
        try {
            return ask();
        } catch (ParameterException badUsage) {
            throw badUsage;
        } catch (Throwable thrown) {
            return Answer.failed(thrown);
        }
    }
}
