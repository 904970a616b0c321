package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.InquiryCommand;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.san.Store;
import com.kelvo.tarn.cli.san.StoreException;
import com.kelvo.tarn.cli.serve.Server;
import java.io.IOException;
import java.io.PrintWriter;
import java.net.InetAddress;
import java.net.InetSocketAddress;
import java.net.UnknownHostException;
import java.util.concurrent.CountDownLatch;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;

/** {@code serve}: a {@link Server}, until a signal ends it. */
@Command(name = "serve", description = "The metrics, what is wrong and the picture over HTTP, until it is ended.",
         footer = "/metrics is for Prometheus, /check JSON (as text/plain what the command check prints), /map the "
             + "page of the command map, /-/healthy says that it runs. A question that takes too long is "
             + "tarn_section_up 0, and not asked again until it has come back. With --db they are those of "
             + "san metrics, san check and san map. There are neither users nor encryption.")
public final class ServeCommand extends InquiryCommand {
    private static final Pattern ADDRESS = Pattern.compile("(?:\\[([^\\[\\]]+)]|([^\\[\\]:]+)):(\\d+)");
    private static final int LAST_PORT = 65535;
    private static final int DAY = 86400;

    @Option(names = "--listen", paramLabel = "ADDRESS:PORT", defaultValue = "127.0.0.1:9479",
            description = "Where to listen (${DEFAULT-VALUE}); port 0 is any that is free.")
    private String listen;

    @Option(names = "--fresh", paramLabel = "SECONDS", defaultValue = "5",
            description = "The host, or the store, is asked at most once in so many (${DEFAULT-VALUE}).")
    private int fresh;

    @Option(names = "--timeout", paramLabel = "SECONDS", defaultValue = "10",
            description = "So long each question may take (${DEFAULT-VALUE}).")
    private int timeout;

    @Option(names = "--db", paramLabel = "FILE|URL", description = "Show the storage network that is in this store, as "
            + "san load has it, and no host.")
    private String database;

    @Override
    protected void chooseHost() {
        if (database == null) {
            super.chooseHost();
        } else if (tarn().host() != null) {
            throw refusal("--host does not go with --db, which asks a store");
        }
    }

    @Override
    public Answer ask() throws InterruptedException {
        if (tarn().json()) {
            throw refusal("--json does not go with serve, which prints no result");
        }
        requireSeconds("--fresh", fresh);
        requireSeconds("--timeout", timeout);
        InetSocketAddress address = address();
        try {
            String program = spec().root().version()[0];
            InetSocketAddress bound = database == null
                ? Server.start(address, library(), tarn().isBuiltInHost(), fresh, timeout, program)
                : Server.start(address, store(), fresh, timeout, this::complain, program);
            PrintWriter out = spec().commandLine().getOut();
            String host = bound.getAddress().getHostAddress();
            out.println("http://" + (host.contains(":") ? "[" + host + "]" : host) + ":" + bound.getPort() + "/");
            out.flush();
            spec().commandLine().getErr().flush(); // which host answers
        } catch (IOException refused) {
            throw new ParameterException(spec().commandLine(), "--listen: " + listen + ": " + refused.getMessage(),
                                         refused);
        }
        new CountDownLatch(1).await(); // a signal ends the virtual machine
        return Answer.missing("it has ended");
    }

    private String store() {
        try {
            return Store.named(database);
        } catch (StoreException unusable) {
            throw refusal("--db: " + unusable.getMessage());
        }
    }

    private void complain(String trouble) {
        PrintWriter err = spec().commandLine().getErr();
        Page.complain(err, trouble);
        err.flush();
    }

    private void requireSeconds(String option, int seconds) {
        if (seconds < 1 || seconds > DAY) {
            throw refusal(option + ": '" + seconds + "' is not from 1 to " + DAY);
        }
    }

    private InetSocketAddress address() {
        Matcher told = ADDRESS.matcher(listen);
        if (!told.matches()) {
            throw refusal("--listen: '" + listen + "' is no address and port such as 127.0.0.1:9479 or [::1]:9479");
        }
        String port = told.group(3);
        if (port.length() > 5 || Integer.parseInt(port) > LAST_PORT) {
            throw refusal("--listen: port " + port + " is not from 0 to " + LAST_PORT);
        }
        try {
            return new InetSocketAddress(InetAddress.getByName(told.group(1) == null ? told.group(2) : told.group(1)),
                                         Integer.parseInt(port));
        } catch (UnknownHostException unknown) {
            throw refusal("--listen: there is no address " + listen);
        }
    }
}
