package com.kelvo.tarn.cli.serve;

import com.kelvo.tarn.cli.answers.Asking;
import com.kelvo.tarn.cli.map.NetworkPicture;
import com.kelvo.tarn.cli.metrics.Exposition;
import com.kelvo.tarn.cli.metrics.NetworkMetrics;
import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.san.NetworkCheck;
import com.kelvo.tarn.cli.san.NetworkTopology;
import com.kelvo.tarn.cli.san.NetworkVerdict;
import com.kelvo.tarn.cli.san.Store;
import java.time.Instant;
import java.util.function.Consumer;
import java.util.function.Function;
import java.util.function.Supplier;

/** What a store has answered. */
final class NetworkAnswers extends Answers {
    private final Question question;

    /** Asks a store, which may be locked or gone: that is told, once for each reason, and is no end. */
    static final class Question implements Supplier<Answers> {
        private final String store;
        private final Asking asking;
        private final Asking drawing;
        private final Consumer<String> complaints;
        private final String program;
        private String told = "";

        /**
         * A question.
         *
         * @param store its file or URL
         * @param asking how it is waited for
         * @param drawing how a picture is waited for
         * @param complaints is told why the store does not answer
         * @param program what draws, with its version
         */
        Question(String store, Asking asking, Asking drawing, Consumer<String> complaints, String program) {
            this.store = store;
            this.asking = asking;
            this.drawing = drawing;
            this.complaints = complaints;
            this.program = program;
        }

        /** Asked by one thread at a time. */
        @Override
        public Answers get() {
            try {
                Answers answers = asking.ask("san", () -> of(open -> {
                    NetworkCheck check = NetworkCheck.of(open);
                    return new NetworkAnswers(this, NetworkMetrics.of(open, check), check);
                }));
                told = "";
                return answers;
            } catch (IllegalStateException failed) {
                String trouble = "the store: " + failed.getMessage();
                if (!trouble.equals(told)) {
                    complaints.accept(trouble);
                }
                told = trouble;
                return new NetworkAnswers(this, trouble);
            }
        }

        private <T> T of(Function<Store, T> asked) {
            try (Store open = Store.open(store)) {
                return asked.apply(open);
            }
        }

        private String picture() {
            return of(open -> new NetworkPicture(NetworkTopology.of(open), NetworkCheck.of(open)))
                .html("drawn by " + program);
        }
    }

    private NetworkAnswers(Question question, Exposition exposition, NetworkCheck check) {
        super(exposition, NetworkVerdict.document(check), NetworkVerdict.plugin(check, Instant.now()));
        this.question = question;
    }

    private NetworkAnswers(Question question, String trouble) {
        super(NetworkMetrics.unknown(), Page.printable(trouble));
        this.question = question;
    }

    /** All paths are read for that alone, a little later. */
    @Override
    String draw() {
        return question.drawing.ask("map", question::picture);
    }
}
