import com.kelvo.tarn.TrInstance;
import com.kelvo.tarn.TrNamespace;
import com.kelvo.tarn.TrProperty;
import com.kelvo.tarn.providers.hba.HbaCache;
import com.kelvo.tarn.providers.hba.HbaClassNames;
import com.kelvo.tarn.providers.solaris.SolarisScsiInterrogator;
import java.lang.reflect.Field;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicReference;

/**
 * Callers that hold monitors, come back from within, come all at once, or have little stack left. Each question on the
 * built-in host has one answer, however it is asked. Runs on the library as an agent loads it: what goes wrong here
 * ends, or hangs, the whole process.
 */
final class Callers {
    /** A question, by what it calls. */
    private enum Question implements Callable<String> {
        FILL {
            @Override
            public String call() throws Exception {
                HbaClassNames names = new HbaClassNames(TrNamespace.KELVO, false);
                return textOf(new HbaCache(false, false).fillHbaCache(names));
            }
        },
        SELF_TEST {
            @Override
            public String call() {
                List<String> lines = new ArrayList<>();
                new HbaCache(false, false).testHbaLibrary(lines);
                return String.join("\n", lines);
            }
        },
        SCAN {
            @Override
            public String call() {
                return new SolarisScsiInterrogator().scsiInterrogate("1T54412345", "1T54412346", "SUN", "CSM200_R");
            }
        }
    }

    private static final int KB = 1024;
    private static final long MINUTES_TO_HANG = 3;
    private static int passed;
    private static int failed;

    private static List<String> answers = new ArrayList<>();

    public static void main(String[] arguments) throws Exception {
        for (Question question : Question.values()) {
            answers.add(question.call());
        }
        test("a list whose add starts a fill and a self-test", Callers::comeBackFromWithin);
        test("one holds a monitor around a fill, the other takes it inside a self-test", Callers::shareAMonitor);
        test("eight threads at once", Callers::comeAllAtOnce);
        for (Question question : Question.values()) {
            test(question + " on little stacks", () -> runOnLittleStacks(question));
            test(question + " at the end of deep recursions", () -> runInDeepRecursions(question));
        }
        System.out.println(passed + " passed, " + failed + " failed");
        System.exit(failed == 0 ? 0 : 1);
    }

    private static void comeBackFromWithin() {
        List<String> lines = new ArrayList<>() {
            @Override
            public boolean add(String line) {
                expectAnswer(Question.FILL);
                expectAnswer(Question.SELF_TEST);
                return super.add(line);
            }
        };
        new HbaCache(false, false).testHbaLibrary(lines);
        expect(String.join("\n", lines).equals(answers.get(Question.SELF_TEST.ordinal())), "other lines");
    }

    private static void shareAMonitor() throws Exception {
        Object monitor = new Object();
        List<String> taker = new ArrayList<>() {
            @Override
            public boolean add(String line) {
                synchronized (monitor) {
                    return super.add(line);
                }
            }
        };
        together(2, number -> {
            for (int i = 0; i < 200; i++) {
                if (number == 0) {
                    synchronized (monitor) {
                        expectAnswer(Question.FILL);
                    }
                } else {
                    new HbaCache(false, false).testHbaLibrary(taker);
                }
            }
        });
        expect(taker.size() == 200 * answers.get(Question.SELF_TEST.ordinal()).lines().count(), "lines are missing");
    }

    private static void comeAllAtOnce() throws Exception {
        together(8, number -> {
            for (int i = 0; i < 150; i++) {
                expectAnswer(Question.values()[(number + i) % Question.values().length]);
            }
        });
    }

    private static void runOnLittleStacks(Question question) throws Exception {
        List<String> outcomes = new ArrayList<>();
        for (int size = 136; size <= 1024; size += 8) {
            outcomes.add(onThread(size * KB, () -> outcomeOf(question, 0)));
            expectAnswer(question);
        }
        expectBoth(outcomes);
    }

    private static void runInDeepRecursions(Question question) throws Exception {
        List<String> outcomes = new ArrayList<>();
        for (int size : new int[] {512, 768, 1024}) {
            for (int depth = 6000; depth >= 0; depth -= 40) {
                int frames = depth;
                outcomes.add(onThread(size * KB, () -> outcomeOf(question, frames)));
            }
            expectAnswer(question);
        }
        expectBoth(outcomes);
    }

    /** "answer", or the message of the StackOverflowError in its place; null when Java itself had none to give. */
    private static String outcomeOf(Question question, int depth) throws Exception {
        try {
            String answer = answerAt(question, depth);
            return answer.equals(answers.get(question.ordinal())) ? "answer" : "wrong: " + answer;
        } catch (StackOverflowError tooDeep) {
            return String.valueOf(tooDeep.getMessage());
        }
    }

    private static String answerAt(Question question, int depth) throws Exception {
        return depth == 0 ? question.call() : answerAt(question, depth - 1);
    }

    /** That there was too little stack for one, enough for another, and nothing else. */
    private static void expectBoth(List<String> outcomes) {
        String refusal = "too little stack for the native buffers";
        List<String> others = new ArrayList<>(outcomes);
        others.removeAll(List.of("answer", refusal, "null"));
        expect(others.isEmpty(), "outcomes: " + others);
        expect(outcomes.contains(refusal) && outcomes.contains("answer"), "not both of: " + refusal + ", answer");
    }

    private static void expectAnswer(Question question) {
        try {
            String answer = question.call();
            expect(answer.equals(answers.get(question.ordinal())), question + " answers " + answer);
        } catch (Exception failure) {
            throw new IllegalStateException(failure);
        }
    }

    // ---- What the tests run in --------------------------------------------------------------------------------------

    private interface Body {
        void run() throws Exception;
    }

    private interface Numbered {
        void run(int number) throws Exception;
    }

    private static final class Failure extends RuntimeException {
        private static final long serialVersionUID = 1;

        Failure(String message) {
            super(message);
        }
    }

    private static void expect(boolean holds, String otherwise) {
        if (!holds) {
            throw new Failure(otherwise);
        }
    }

    /** Runs it on a thread of its own; a test that hangs ends the program. */
    private static void test(String name, Body body) throws InterruptedException {
        AtomicReference<Throwable> failure = new AtomicReference<>();
        Thread thread = start(8 * KB * KB, body, failure);
        thread.join(TimeUnit.MINUTES.toMillis(MINUTES_TO_HANG));
        if (thread.isAlive()) {
            System.out.println("HANGS: " + name);
            Runtime.getRuntime().halt(1);
        }
        if (failure.get() == null) {
            passed++;
        } else {
            failed++;
            System.out.println("FAILED: " + name);
            failure.get().printStackTrace(System.out);
        }
    }

    private static Thread start(long stackSize, Body body, AtomicReference<Throwable> failure) {
        Thread thread = new Thread(null, () -> {
            try {
                body.run();
            } catch (Throwable thrown) {
                failure.set(thrown);
            }
        }, "caller", stackSize);
        thread.start();
        return thread;
    }

    private static void joined(Thread thread, AtomicReference<Throwable> failure) throws InterruptedException {
        thread.join();
        if (failure.get() != null) {
            throw new IllegalStateException(failure.get());
        }
    }

    private static void together(int count, Numbered body) throws InterruptedException {
        CountDownLatch all = new CountDownLatch(count);
        AtomicReference<Throwable> failure = new AtomicReference<>();
        List<Thread> threads = new ArrayList<>();
        for (int i = 0; i < count; i++) {
            int number = i;
            threads.add(start(0, () -> {
                all.countDown();
                all.await();
                body.run(number);
            }, failure));
        }
        for (Thread thread : threads) {
            joined(thread, failure);
        }
    }

    private static String onThread(long stackSize, Callable<String> body) throws InterruptedException {
        AtomicReference<Throwable> failure = new AtomicReference<>();
        AtomicReference<String> result = new AtomicReference<>();
        joined(start(stackSize, () -> result.set(body.call()), failure), failure);
        return result.get();
    }

    /** Everything in a part of the HBA cache, in its order. */
    private static String textOf(Object part) throws ReflectiveOperationException {
        if (part instanceof Object[]) {
            StringBuilder text = new StringBuilder("[");
            for (Object element : (Object[]) part) {
                text.append(textOf(element)).append(' ');
            }
            return text.append("]").toString();
        }
        if (part instanceof TrInstance) {
            StringBuilder text = new StringBuilder();
            for (TrProperty property : ((TrInstance) part).getTrClass().getProperties()) {
                text.append(textOf(((TrInstance) part).get(property))).append('|');
            }
            return text.toString();
        }
        if (part == null || !part.getClass().getName().startsWith(HbaCache.class.getName())) {
            return String.valueOf(part);
        }
        StringBuilder text = new StringBuilder("{");
        for (Field field : part.getClass().getDeclaredFields()) {
            field.setAccessible(true);
            text.append(textOf(field.get(part))).append(' ');
        }
        return text.append("}").toString();
    }
}
