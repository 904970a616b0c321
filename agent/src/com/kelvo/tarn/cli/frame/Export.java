package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.output.OutputFile;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;

/** A command whose answer is a text for other programs: printed as it is, or made a file. */
public abstract class Export extends InquiryCommand {
    @Option(names = "--output", paramLabel = "FILE", description = "Make or replace this file, in one step, and print "
            + "nothing; - is standard output. With --json the result is null then, else the text.")
    private String output;

    /**
     * {@return the text, which ends with a newline}
     *
     * @throws IOException when it cannot be made, saying what keeps it from that
     */
    protected abstract String text() throws IOException;

    /**
     * {@return what a file is to hold}
     *
     * @throws IOException when it cannot be made, saying what keeps it from that
     */
    protected byte[] content() throws IOException {
        return text().getBytes(StandardCharsets.UTF_8);
    }

    /** {@return the file that the text goes to; null for standard output} */
    protected final String output() {
        return "-".equals(output) ? null : output;
    }

    @Override
    public final Answer ask() {
        if (output != null && output.isEmpty()) {
            throw refusal("--output: no file named");
        }
        try {
            if (output() == null) {
                return Answer.text(text());
            }
            OutputFile.write(output, content());
            return Answer.text(null);
        } catch (IOException failed) {
            throw new ParameterException(spec().commandLine(), failed.getMessage(), failed);
        }
    }
}
