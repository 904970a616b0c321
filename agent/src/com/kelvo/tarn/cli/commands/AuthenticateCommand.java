package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.providers.solaris.SolarisAuthenticator;
import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStreamReader;
import java.lang.ProcessBuilder.Redirect;
import java.nio.charset.StandardCharsets;
import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** {@code authenticate}: the native method of that name. */
@Command(name = "authenticate", description = "Whether a password is that user's.",
         footer = "The password is asked for without echo, or is one line of standard input. Exit status: 0 it is, "
             + "3 it is not.")
public final class AuthenticateCommand extends Inquiry<Boolean> {
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
    private static String readPassword() throws IOException {
        boolean terminal = stty("-echo");
        if (terminal) {
            Runtime.getRuntime().addShutdownHook(new Thread(() -> stty("echo")));
            System.err.print("Password: ");
        }
        String line = new BufferedReader(new InputStreamReader(System.in, StandardCharsets.UTF_8)).readLine();
        if (terminal) {
            System.err.println();
        }
        return line == null ? "" : line;
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
