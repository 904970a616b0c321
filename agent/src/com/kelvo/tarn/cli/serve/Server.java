package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.sun.net.httpserver.Headers;
import com.sun.net.httpserver.HttpExchange;
import com.sun.net.httpserver.HttpServer;
import java.io.IOException;
import java.net.InetSocketAddress;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.ThreadPoolExecutor;
import java.util.concurrent.TimeUnit;
import java.util.function.Consumer;
import java.util.function.Function;
import java.util.function.Supplier;

/**
 * Shows what a host answers, or the store of a network, to whoever can connect. A request's path is looked up in a
 * table of a few, and names nothing else.
 */
public final class Server {
    /** So many may be connected at once; each that asks has a thread. */
    private static final int CONNECTIONS = 64;
    /** In bytes. */
    private static final int LONGEST_HEAD = 8192;
    /** In which a request has to come. */
    private static final int REQUEST_SECONDS = 5;
    /** In which an answer has to be taken, beyond the time that it takes to have one. */
    private static final int ANSWER_SECONDS = 60;
    /** Questions in a round, at most. */
    private static final int SECTIONS = 16;

    private static final String INDEX = "<!DOCTYPE html>\n<html lang=\"en\"><meta charset=\"utf-8\">"
        + "<title>tarn</title>\n<h1>tarn</h1>\n<ul>\n<li><a href=\"metrics\">Metrics</a> for Prometheus\n"
        + "<li><a href=\"check\">What is wrong</a>, as JSON\n<li><a href=\"map\">The storage network</a>\n"
        + "<li><a href=\"-/healthy\">Whether this answers</a>\n</ul>\n";

    private final HttpServer server;
    private final Map<String, Function<Accepted, Body>> pages = new HashMap<>();

    private Server(InetSocketAddress address, FreshAnswers<Answers> answers) throws IOException {
        Body healthy = Body.of("text/plain", "tarn answers\n");
        pages.put("/metrics", accept -> answers.get().metrics(accept));
        pages.put("/check", accept -> answers.get().check(accept));
        pages.put("/map", accept -> answers.get().map());
        pages.put("/-/healthy", accept -> healthy);
        Body index = Body.of("text/html", INDEX);
        pages.put("/", accept -> index);
        server = HttpServer.create(address, CONNECTIONS);
        server.createContext("/", this::handle);
        ThreadPoolExecutor threads = new ThreadPoolExecutor(
            CONNECTIONS, CONNECTIONS, 30, TimeUnit.SECONDS, new LinkedBlockingQueue<>(),
            task -> new Thread(task, "http"));
        threads.allowCoreThreadTimeOut(true);
        server.setExecutor(threads);
    }

    /**
     * Answers from now on, in threads of its own.
     *
     * @param address where it listens
     * @param library what is asked
     * @param isExample whether the built-in host is
     * @param freshSeconds the host is asked at most once in so many
     * @param limitSeconds so long each question may take
     * @param program what answers, with its version
     * @return where it listens
     * @throws IOException when it cannot listen there
     */
    public static InetSocketAddress start(InetSocketAddress address, Library library, boolean isExample,
                                          int freshSeconds, int limitSeconds, String program) throws IOException {
        limitConnections(limitSeconds);
        Limits asking = new Limits(library.log(), limitSeconds);
        Sampling sampling = new Sampling(library);
        Limits drawing = new Limits(library.log(), limitSeconds);
        return start(address, () -> HostAnswers.of(library, asking, sampling, drawing, isExample, program),
                     freshSeconds);
    }

    /**
     * Answers from now on, in threads of its own, with what a store tells.
     *
     * @param address where it listens
     * @param store its file or URL
     * @param freshSeconds the store is asked at most once in so many
     * @param limitSeconds so long that may take
     * @param complaints is told why the store does not answer, once for each reason
     * @param program what answers, with its version
     * @return where it listens
     * @throws IOException when it cannot listen there
     */
    public static InetSocketAddress start(InetSocketAddress address, String store, int freshSeconds, int limitSeconds,
                                          Consumer<String> complaints, String program) throws IOException {
        limitConnections(limitSeconds);
        return start(address, new NetworkAnswers.Question(
            store, new Limits(new LibraryLog(), limitSeconds), new Limits(new LibraryLog(), limitSeconds), complaints,
            program), freshSeconds);
    }

    private static InetSocketAddress start(InetSocketAddress address, Supplier<Answers> asking, int freshSeconds)
        throws IOException {
        HttpServer server = new Server(address, new FreshAnswers<>(asking, freshSeconds)).server;
        server.start();
        return server.getAddress();
    }

    /** The virtual machine's server reads these once, when its first class is loaded. */
    private static void limitConnections(int limitSeconds) {
        Map.of("jdk.httpserver.maxConnections", CONNECTIONS, "sun.net.httpserver.maxReqTime", REQUEST_SECONDS,
               "sun.net.httpserver.maxRspTime", ANSWER_SECONDS + SECTIONS * limitSeconds,
               "sun.net.httpserver.maxReqHeaderSize", LONGEST_HEAD, "sun.net.httpserver.nodelay", true)
            .forEach((name, value) -> System.setProperty(name, value.toString()));
    }

    private void handle(HttpExchange exchange) throws IOException {
        try {
            answer(exchange, bodyFor(exchange));
        } catch (RuntimeException | Error failed) {
            answer(exchange, Body.refusal(500, "this cannot be answered"));
        } finally {
            exchange.close();
        }
    }

    private Body bodyFor(HttpExchange exchange) {
        Function<Accepted, Body> page = pages.get(exchange.getRequestURI().getPath());
        if (length(exchange) > LONGEST_HEAD) { // where the virtual machine's server has no such limit
            exchange.getResponseHeaders().set("Connection", "close");
            return Body.refusal(431, "a head may have " + LONGEST_HEAD + " bytes");
        }
        if (!List.of("GET", "HEAD").contains(exchange.getRequestMethod())) {
            exchange.getResponseHeaders().set("Allow", "GET, HEAD");
            exchange.getResponseHeaders().set("Connection", "close"); // whatever else is sent
            return Body.refusal(405, "only GET and HEAD are answered");
        }
        return page == null ? Body.refusal(404, "there is no such page")
            : page.apply(new Accepted(exchange.getRequestHeaders().get("Accept")));
    }

    private static long length(HttpExchange exchange) {
        long length = exchange.getRequestMethod().length() + exchange.getRequestURI().toString().length();
        for (Map.Entry<String, List<String>> header : exchange.getRequestHeaders().entrySet()) {
            for (String value : header.getValue()) {
                length += header.getKey().length() + value.length() + 4L; // a colon, a blank and the line's end
            }
        }
        return length;
    }

    private static void answer(HttpExchange exchange, Body body) throws IOException {
        Headers headers = exchange.getResponseHeaders();
        headers.set("Content-Type", body.type);
        headers.set("Vary", "Accept, Accept-Encoding");
        headers.set("Cache-Control", "no-store");
        headers.set("X-Content-Type-Options", "nosniff");
        boolean isPacked = new Accepted(exchange.getRequestHeaders().get("Accept-Encoding")).names("gzip");
        byte[] bytes = isPacked ? body.packed() : body.plain();
        if (isPacked) {
            headers.set("Content-Encoding", "gzip");
        }
        if (exchange.getRequestMethod().equals("HEAD")) {
            headers.set("Content-Length", String.valueOf(bytes.length));
            exchange.sendResponseHeaders(body.status, -1);
            return;
        }
        exchange.sendResponseHeaders(body.status, bytes.length);
        exchange.getResponseBody().write(bytes);
        exchange.getResponseBody().close();
    }
}
