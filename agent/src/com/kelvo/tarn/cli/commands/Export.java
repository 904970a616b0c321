package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.OutputFile;
import com.kelvo.tarn.cli.output.Page;
import java.io.IOException;
import java.io.PrintWriter;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;

/** A command whose answer is a text for other programs: printed as it is, or made a file. */
abstract class Export extends Inquiry<String> {
    @Option(names = "--output", paramLabel = "FILE", description = "Make or replace this file, in one step, and print "
            + "nothing. With --json the result is null then, else the text.")
    private String output;

    /**
     * {@return the text, which ends with a newline}
     *
     * @throws IOException when it cannot be made, saying what keeps it from that
     */
    protected abstract String text() throws IOException;

    /** {@return the file that the text goes to; null for standard output} */
    protected final String output() {
        return output;
    }

    @Override
    protected final String ask() {
        if (output != null && output.isEmpty()) {
            throw refusal("--output: no file named");
        }
        try {
            String text = text();
            if (output == null) {
                return text;
            }
            OutputFile.write(output, text);
            return null;
        } catch (IOException failed) {
            throw new ParameterException(spec().commandLine(), failed.getMessage(), failed);
        }
    }

    /**
     * {@return bad usage of this command, to be thrown}
     *
     * @param message what is wrong
     */
    protected final ParameterException refusal(String message) {
        return new ParameterException(spec().commandLine(), message);
    }

    @Override
    protected final void print(String text, PrintWriter out) {
        if (text != null) {
            out.print(text);
        }
    }

    @Override
    protected final void show(String text, Page out) {
        print(text, out);
    }

    @Override
    protected final boolean isSection() {
        return false;
    }
}
