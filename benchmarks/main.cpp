// Runs the registered comparisons and prints their ratios. Times are compared within one process only and never shown:
// they say more of the machine than of the library. They are the running thread's own processor time, and the shortest
// of many, so that other load on the machine hardly shows.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <limits>
#include <stdexcept>

#include "benchmarks/Comparison.h"
#include "platform/replay/Replay.h"
#include "tests/machine/Jvm.h"

namespace bench {
namespace {

constexpr int turnsPerWarmUp = 8;

using Source = std::vector<Comparison> (*)();

std::vector<Source> &sources() {
    static std::vector<Source> all;
    return all;
}

/// A failure of one comparison; the others go on.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Both sides of one comparison, run in turns.
class Turns {
public:
    Turns(JNIEnv *environment, const Comparison &compared)
        : env(environment), comparison(compared), oneHost(compared.measured.host == compared.reference.host) {
        if (oneHost) {
            replay::loadHostText(comparison.measured.host);
        }
    }

    /// Raises Failure unless both sides come to the same result.
    void checkResults() {
        if (comparison.content && contentOf(comparison.measured) != contentOf(comparison.reference)) {
            throw Failure("the two sides come to different results");
        }
    }

    /// One turn each. The side that goes first changes from turn to turn, so that neither always finds a warm cache.
    void take() {
        if (measuredFirst) {
            time(comparison.measured, measured);
            time(comparison.reference, reference);
        } else {
            time(comparison.reference, reference);
            time(comparison.measured, measured);
        }
        measuredFirst = !measuredFirst;
    }

    /// Forgets the turns so far.
    void forget() {
        measured = reference = std::numeric_limits<double>::infinity();
    }

    double ratio() const {
        return measured / (comparison.scale * reference);
    }

private:
    /// The side's result, in a local frame that the caller pops.
    jobject result(const Side &side) {
        const jobject made = side.run(env);
        if (const std::string exception = jvm::takeException(env); !exception.empty()) {
            env->PopLocalFrame(nullptr);
            throw Failure(exception);
        }
        return made;
    }

    void enter(const Side &side) {
        if (!oneHost) {
            replay::loadHostText(side.host);
        }
        env->PushLocalFrame(16);
    }

    /// Processor time that this thread has used, in seconds.
    static double threadTime() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }

    void time(const Side &side, double &shortest) {
        enter(side);
        const double start = threadTime();
        result(side);
        shortest = std::min(shortest, threadTime() - start);
        env->PopLocalFrame(nullptr);
    }

    std::vector<std::string> contentOf(const Side &side) {
        enter(side);
        const std::vector<std::string> content = comparison.content(env, result(side));
        env->PopLocalFrame(nullptr);
        return content;
    }

    JNIEnv *env;
    const Comparison &comparison;
    bool oneHost;
    bool measuredFirst = true;
    double measured = 0;
    double reference = 0;
};

void compare(benchmark::State &state, const Comparison &comparison) {
    std::fprintf(stderr, "Measuring %s\n", comparison.name.c_str());
    try {
        Turns turns(jvm::environment(), comparison);
        turns.checkResults();
        for (int i = 0; i <= comparison.turns / turnsPerWarmUp; ++i) {
            turns.take();
        }
        turns.forget();
        for ([[maybe_unused]] const auto turn : state) {
            turns.take();
        }
        state.counters["ratio"] = turns.ratio();
        state.counters["bound"] = comparison.bound;
    } catch (const std::exception &error) {
        state.SkipWithError(error.what());
    }
}

/// Prints one line per comparison.
class RatioTable : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override {
        std::printf("%-64s %7s %7s\n", "", "ratio", "bound");
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            const std::string name = run.run_name.function_name;
            if (run.error_occurred) {
                std::printf("%-64s failed: %s\n", name.c_str(), run.error_message.c_str());
                failed = true;
                continue;
            }
            const double ratio = run.counters.at("ratio");
            const double bound = run.counters.at("bound");
            if (bound == noBound) {
                std::printf("%-64s %7.2f %7s\n", name.c_str(), ratio, "-");
                continue;
            }
            std::printf("%-64s %7.2f %7.2f  %s\n", name.c_str(), ratio, bound, ratio <= bound ? "met" : "NOT MET");
        }
        std::fflush(stdout);
    }

    bool hasFailed() const {
        return failed;
    }

private:
    bool failed = false;
};

void printHelp() {
    std::puts("./bench [--benchmark_filter=REGEX] [--benchmark_list_tests]\n"
              "./bench start-up\n\n"
              "Runs each comparison whose name the expression matches, and prints how many times its reference the\n"
              "measured side takes, with the bound that this is to stay below. The exit status is 0 when everything\n"
              "ran, whether or not the bounds were met.");
}

} // namespace

Registration::Registration(std::vector<Comparison> (*comparisons)()) {
    sources().push_back(comparisons);
}

} // namespace bench

int main(int count, char **arguments) {
    using namespace bench;
    benchmark::Initialize(&count, arguments, printHelp);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
        return 2;
    }
    std::fputs("Starting the virtual machine\n", stderr);
    jvm::start({"-Xms512m", "-Xmx512m", "-XX:+UseSerialGC"});

    std::vector<Comparison> comparisons;
    for (const Source source : sources()) {
        std::ranges::move(source(), std::back_inserter(comparisons));
    }
    std::ranges::sort(comparisons, {}, &Comparison::name);
    for (const Comparison &comparison : comparisons) {
        benchmark::RegisterBenchmark(comparison.name.c_str(), [&comparison](benchmark::State &state) {
            compare(state, comparison);
        })->Iterations(comparison.turns);
    }
    RatioTable table;
    const std::size_t ran = benchmark::RunSpecifiedBenchmarks(&table);
    if (ran == 0) {
        std::fputs("no comparison has such a name\n", stderr);
    }
    return ran == 0 || table.hasFailed() ? 1 : 0;
}
