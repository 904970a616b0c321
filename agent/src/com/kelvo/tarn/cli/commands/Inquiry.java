package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.answers.LibraryLog;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Terminal;
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
    private TarnOptions tarn;

    @Spec
    private CommandSpec spec;

    /** Makes the native call, or the calls. */
    protected abstract T ask() throws Exception;

    /** Lays the answer out for people. */
    protected abstract void show(T answer, Page out);

    /** Lays it out as a section of the report. */
    protected void summarize(T answer, Page out) {
        show(answer, out);
    }

    /** What JSON shows of the answer. */
    protected Object result(T answer) {
        return answer;
    }

    /** When the answer is that there is no such thing, what people are told: "no disk c9t9d9". Otherwise null. */
    protected String missing(T answer) {
        return null;
    }

    protected int exitStatus(T answer) {
        return 0;
    }

    protected boolean takesHbaOptions() {
        return false;
    }

    /** Whether the report has a section of it: not when it joins the answers of others. */
    protected boolean isSection() {
        return true;
    }

    protected final TarnOptions tarn() {
        return tarn;
    }

    protected final Library library() {
        return new Library(tarn.log());
    }

    protected final CommandSpec spec() {
        return spec;
    }

    /** Asks, whatever comes of it. */
    final Answer answer() {
        try {
            T answer = ask();
            String missing = missing(answer);
            return new Answer(result(answer), null, missing, missing == null ? exitStatus(answer) : 1,
                              out -> show(answer, out), out -> summarize(answer, out));
        } catch (Throwable thrown) {
            String message = thrown.getMessage() != null ? thrown.getMessage() : thrown.toString();
            return new Answer(null, thrown, message, 1, out -> { }, out -> out.println("!! " + message));
        }
    }

    @Override
    public final Integer call() {
        if (tarn.hba().any() && !takesHbaOptions()) {
            throw new ParameterException(spec.commandLine(), "The options for device names go with hba, paths and "
                                         + "report");
        }
        tarn.chooseHost(this);
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
            return answer.status;
        }
        if (answer.complaint == null) {
            answer.page.accept(new Page(out, Terminal.ofStandardOutput()));
            out.flush();
        }
        log.forEach(line -> err.println(line.level + ": " + line.text()));
        if (answer.complaint != null) {
            Page.complain(err, answer.complaint);
        }
        return answer.status;
    }
}
