package com.kelvo.tarn.cli;

import java.io.PrintWriter;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.concurrent.Callable;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParentCommand;
import picocli.CommandLine.Spec;

/** A command that asks the library one question and prints the answer. */
abstract class Inquiry<T> implements Callable<Integer> {
    @ParentCommand
    private Tarn tarn;

    @Spec
    private CommandSpec spec;

    /** Makes the native call. */
    protected abstract T ask() throws Exception;

    /** Lays the answer out for people. */
    protected abstract void show(T answer, PrintWriter out);

    /** Lays it out as a section of the report. */
    protected void summarize(T answer, PrintWriter out) {
        show(answer, out);
    }

    /** What JSON shows of the answer. */
    protected Object result(T answer) {
        return answer;
    }

    protected int exitStatus(T answer) {
        return 0;
    }

    protected boolean takesHbaOptions() {
        return false;
    }

    protected final Tarn tarn() {
        return tarn;
    }

    protected final CommandSpec spec() {
        return spec;
    }

    /** Asks, whatever comes of it. */
    final Answer answer() {
        try {
            T answer = ask();
            return new Answer(result(answer), null, exitStatus(answer), out -> show(answer, out),
                              out -> summarize(answer, out));
        } catch (Throwable thrown) {
            return new Answer(null, thrown, 1, out -> { }, out -> out.println("!! " + message(thrown)));
        }
    }

    @Override
    public final Integer call() {
        if (tarn.hba().any() && !takesHbaOptions()) {
            throw new ParameterException(spec.commandLine(), "The options for device names go with hba and report");
        }
        tarn.chooseHost();
        Answer answer = answer();
        List<LibraryLog.Line> log = tarn.log().take();
        PrintWriter out = spec.commandLine().getOut();
        PrintWriter err = spec.commandLine().getErr();
        if (tarn.json()) {
            Map<String, Object> document = new LinkedHashMap<>();
            document.put("result", answer.result);
            document.put("log", log);
            document.put("exception", answer.thrown);
            out.println(Json.text(document));
        } else {
            answer.page.accept(new Page(out));
            out.flush();
            log.forEach(err::println);
            if (answer.thrown != null) {
                Tarn.complain(err, message(answer.thrown));
            }
        }
        return answer.status;
    }

    private static String message(Throwable thrown) {
        return thrown.getMessage() != null ? thrown.getMessage() : thrown.toString();
    }
}
