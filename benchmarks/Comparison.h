#pragma once

#include <jni.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

// What ./bench measures: pairs of runs in one virtual machine, of which one is to take at most so many times the other.

namespace bench {

/// The bound of a pair that is there to be compared and nothing more.
inline constexpr double noBound = std::numeric_limits<double>::infinity();

/// One half of a pair.
struct Side {
    std::string host; ///< description of the host that answers; if both sides name the same, it is loaded once
    std::function<jobject(JNIEnv *)> run; ///< what is timed, in a local frame of its own; an exception is a failure
};

/// A pair whose sides take turns. Their ratio is the shortest time of `measured` divided by the shortest of `reference`
/// times `scale`.
struct Comparison {
    std::string name;
    double bound;       ///< what the ratio is to stay below
    Side measured;      ///< the library
    Side reference;     ///< its floor: the calls that the result needs and no more; or the library on a smaller host
    double scale = 1.0; ///< how many times the reference's work the measured side has
    int turns = 60;

    /// What a side's result says; both sides must say the same before they are measured. None: nothing to compare.
    std::function<std::vector<std::string>(JNIEnv *, jobject)> content;
};

/// Adds comparisons to those that ./bench makes. For namespace-scope objects: the function is called when the virtual
/// machine has started.
class Registration {
public:
    explicit Registration(std::vector<Comparison> (*comparisons)());
};

} // namespace bench
