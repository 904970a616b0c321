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

    /**
     * Makes the native call, or the calls.
     *
     * @return the answer
     * @throws Exception what the call has thrown, which is shown and is no failure of the command's own
     */
    protected abstract T ask() throws Exception;

    /**
     * Lays the answer out for people.
     *
     * @param answer one that is not missing
     * @param out where
     */
    protected abstract void show(T answer, Page out);

    /**
     * Lays it out as a section of the report.
     *
     * @param answer one that is not missing
     * @param out where
     */
    protected void summarize(T answer, Page out) {
        show(answer, out);
    }

    /**
     * {@return what JSON shows of the answer}
     *
     * @param answer any
     */
    protected Object result(T answer) {
        return answer;
    }

    /**
     * {@return when the answer is that there is no such thing, what people are told: "no disk c9t9d9"; otherwise null}
     *
     * @param answer any
     */
    protected String missing(T answer) {
        return null;
    }

    /**
     * {@return what people are told of what the native call threw}
     *
     * @param message that of the exception
     */
    protected String complaint(String message) {
        return message;
    }

    /**
     * {@return the exit status of the command}
     *
     * @param answer one that is not missing
     */
    protected int exitStatus(T answer) {
        return 0;
    }

    /**
     * {@return whether people are shown a line of the library's log beside the answer; JSON has them all}
     *
     * @param line the line
     * @param answer one that is not missing
     */
    protected boolean isToThePoint(LibraryLog.Line line, T answer) {
        return true;
    }

    /** {@return whether the options for device names go with it} */
    protected boolean takesHbaOptions() {
        return false;
    }

    /** {@return whether the report has a section of it: not when it joins the answers of others} */
    protected boolean isSection() {
        return true;
    }

    /** Makes the host answer that the options name. */
    protected void chooseHost() {
        tarn.chooseHost(spec.commandLine());
    }

    /** {@return the options that all commands have} */
    protected final TarnOptions tarn() {
        return tarn;
    }

    /** {@return the library, logging to where the command's lines come from} */
    protected final Library library() {
        return new Library(tarn.log());
    }

    /** {@return the command as picocli sees it} */
    protected final CommandSpec spec() {
        return spec;
    }

    /**
     * Writes the answer when it is not to be JSON.
     *
     * @param answer one that is not missing
     * @param out where
     */
    protected void print(T answer, PrintWriter out) {
        show(answer, new Page(out, Terminal.ofStandardOutput()));
    }

    /** Asks, whatever comes of it. */
    final Answer answer() {
        try {
            T answer = ask();
            String missing = missing(answer);
            return new Answer(result(answer), null, missing, missing == null ? exitStatus(answer) : 1,
                              out -> print(answer, out), out -> summarize(answer, out),
                              line -> missing == null && isToThePoint(line, answer));
        } catch (ParameterException badUsage) {
            throw badUsage;
        } catch (Throwable thrown) {
            String message = complaint(thrown.getMessage() != null ? thrown.getMessage() : thrown.toString());
            return new Answer(null, thrown, message, spec.exitCodeOnExecutionException(), out -> { },
                              out -> out.println("!! " + message), line -> true);
        }
    }

    @Override
    public final Integer call() {
        if (tarn.hba().any() && !takesHbaOptions()) {
            throw new ParameterException(spec.commandLine(), "The options for device names go with hba, "
                                         + "paths, map and report");
        }
        if (tarn.csv() && !(this instanceof TableInquiry)) {
            throw new ParameterException(spec.commandLine(), "--csv goes with the commands that print one table");
        }
        if (tarn.csv() && tarn.json()) {
            throw new ParameterException(spec.commandLine(), "--csv and --json do not go together");
        }
        chooseHost();
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
            answer.page.accept(out);
            out.flush();
        }
        log.stream().filter(answer.shownLog).map(line -> line.level + ": " + line.text()).distinct()
            .forEach(err::println);
        if (answer.complaint != null) {
            Page.complain(err, answer.complaint);
        }
        return answer.status;
    }
}
