package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.InquiryCommand;
import java.io.BufferedInputStream;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.lang.ProcessBuilder.Redirect;
import java.nio.charset.StandardCharsets;
import picocli.CommandLine.Command;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Parameters;

/** {@code authenticate}: the native method of that name. */
@Command(name = "authenticate", description = "Whether a password is that user's.",
         footer = "The password is asked for without echo, or is one line of standard input, of at most 4096 bytes. "
             + "Exit status: 0 it is, 3 it is not.")
public final class AuthenticateCommand extends InquiryCommand {
    private static final int LONGEST_PASSWORD = 4096; // bytes

    @Parameters(paramLabel = "USER", description = "The user's name.")
    private String user;

    @Override
    public Answer ask() throws IOException {
        boolean accepted = library().authenticate(user, readPassword());
        return Answer.page(accepted, out -> out.println(
            accepted ? "yes, that is the password of " + user : "no, that is not the password of " + user))
            .withStatus(accepted ? 0 : 3);
    }

    /** Input that ends before a line does counts as an empty password. */
    private String readPassword() throws IOException {
        boolean terminal = stty("-echo");
        if (terminal) {
            Runtime.getRuntime().addShutdownHook(new Thread(() -> stty("echo")));
            System.err.print("Password: ");
        }
        try {
            return readLine(new BufferedInputStream(System.in));
        } finally {
            if (terminal) {
                System.err.println();
            }
        }
    }

    private String readLine(InputStream in) throws IOException {
        ByteArrayOutputStream line = new ByteArrayOutputStream();
        for (int next = in.read(); next >= 0 && next != '\n' && next != '\r'; next = in.read()) {
            if (line.size() == LONGEST_PASSWORD) {
                throw new ParameterException(spec().commandLine(), "the password is longer than " + LONGEST_PASSWORD
                                             + " bytes", new IllegalArgumentException());
            }
            line.write(next);
        }
        return line.toString(StandardCharsets.UTF_8);
    }

    /**
     * Sets the terminal on standard input; false when there is none. Java's own console asks for standard output to be
     * one as well, and would let a password show as it is typed whenever the answer goes into a pipe.
     */
    private static boolean stty(String setting) {
        try {
            return new ProcessBuilder("stty", setting).redirectInput(Redirect.INHERIT).redirectOutput(Redirect.DISCARD)
                .redirectError(Redirect.DISCARD).start().waitFor() == 0;
        } catch (IOException | InterruptedException noTerminal) {
            return false;
        }
    }
}
