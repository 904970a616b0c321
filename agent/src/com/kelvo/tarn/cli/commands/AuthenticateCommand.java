package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.solaris.SolarisAuthenticator;
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
public final class AuthenticateCommand extends Inquiry<Boolean> {
    private static final int longestPassword = 4096; // bytes

    @Parameters(paramLabel = "USER", description = "The user's name.")
    private String user;

    @Override
    protected Boolean ask() throws IOException {
        return new SolarisAuthenticator().authenticate(user, readPassword());
    }

    @Override
    protected void show(Boolean accepted, Page out) {
        out.println(accepted ? "yes, that is the password of " + user : "no, that is not the password of " + user);
    }

    @Override
    protected int exitStatus(Boolean accepted) {
        return accepted ? 0 : 3;
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
            if (line.size() == longestPassword) {
                throw new ParameterException(spec().commandLine(), "the password is longer than " + longestPassword
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
