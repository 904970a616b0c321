package com.kelvo.tarn.cli.frame;

import com.kelvo.tarn.cli.answers.Library;
import com.kelvo.tarn.cli.output.Json;
import com.kelvo.tarn.cli.output.Page;
import java.io.PrintWriter;
import java.time.Duration;
import java.util.List;
import java.util.concurrent.Callable;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Spec;

/** A command that asks the library one question and prints the answer. */
public abstract class InquiryCommand implements Inquiry, Callable<Integer> {
    @Spec
    private CommandSpec spec;

    /** Makes the host answer that the options name. */
    protected void chooseHost() {
        tarn().chooseHost(spec.commandLine());
    }

    /** {@return the options that all commands have} */
    protected final TarnOptions tarn() {
        return (TarnOptions) spec.root().userObject();
    }

    /** {@return the library that the command asks} */
    protected final Library library() {
        return tarn().library();
    }

    /** {@return the command as picocli sees it} */
    protected final CommandSpec spec() {
        return spec;
    }

    /**
     * {@return bad usage of this command, to be thrown}
     *
     * @param message what is wrong
     */
    protected final ParameterException refusal(String message) {
        return new ParameterException(spec.commandLine(), message);
    }

    /**
     * {@return the span of time that an option names}
     *
     * @param option its name
     * @param given its value, of which anything but 90m, 36h, 7d and the like is refused
     */
    protected final Duration duration(String option, String given) {
        return Durations.of(spec, option, given);
    }

    /** Whether the answer is a table, for programs too. */
    boolean hasTable() {
        return false;
    }

    @Override
    public final Integer call() {
        TarnOptions tarn = tarn();
        tarn.refuseUnsuitable(spec.commandLine(), hasTable());
        chooseHost();
        Answer answer = answer();
        int status = answer.thrown == null ? answer.status() : spec.exitCodeOnExecutionException();
        PrintWriter out = spec.commandLine().getOut();
        PrintWriter err = spec.commandLine().getErr();
        if (tarn.json()) {
            out.println(Json.text(Json.object("result", answer.result, "log", tarn.log().take(),
                                              "exception", answer.thrown)));
            return status;
        }
        if (answer.complaint == null) {
            if (tarn.csv()) {
                answer.table.get().printCsv(out, tarn.csvRaw());
            } else {
                answer.page.accept(out);
            }
            out.flush();
        }
        tarn.log().take().stream().filter(answer.shownLog).map(line -> line.level + ": " + line.text()).distinct()
            .forEach(err::println);
        if (answer.complaint != null) {
            Page.complain(err, answer.complaint);
        }
        return status;
    }
}
