#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "record/Report.h"

// Calls that may never return, and cannot be broken off either, are made by processes of their own: askers. An asker says
// what it calls, and how each call came out; one whose call takes longer than the limit is given up, and another goes on.
// The askers are children of a process that is begun while the recorder is small, and that ends them when the recorder
// ends, however it does.

namespace record {

/// What an asker says of its calls. `call` and `index` mean what those who ask and who take the answers make of them.
class Teller {
public:
    virtual ~Teller() = default;

    /// The call begins.
    virtual void begin(unsigned call, unsigned index = 0) = 0;

    /// It has come out with an error of its kind, or 0; `data` is what it told. The next call has not begun.
    virtual void tell(unsigned call, int error, std::span<const std::byte> data = {}, unsigned index = 0) = 0;

    /// The most bytes that one call tells.
    static constexpr std::size_t mostData = std::size_t{128} * 1024;
};

/// Bytes as they are told, and back.
template <class T>
std::span<const std::byte> bytesOf(const T &value) {
    return std::as_bytes(std::span(&value, 1));
}
template <class T>
T valueOf(std::span<const std::byte> data) {
    T value;
    if (data.size() < sizeof value) {
        value = {};
        std::ranges::copy(data, reinterpret_cast<std::byte *>(&value));
    } else {
        std::memcpy(&value, data.data(), sizeof value);
    }
    return value;
}

/// Makes the calls that a request's text asks for, in an asker.
using Ask = std::function<void(std::string_view text, Teller &teller)>;

struct Request {
    std::size_t kind; // index among the ways to ask
    std::string text;
};

struct Answer {
    unsigned call;
    unsigned index;
    int error;
    std::span<const std::byte> data; // aligned like what it is made of
};

/// A number of items to ask for. Answers are handed over in the order of the items, whoever asks them when.
class Inquiry {
public:
    virtual ~Inquiry() = default;

    /// What to ask for the item now.
    virtual Request request(std::size_t item) = 0;

    /// What the item is of: while a call for one item hangs, none of another of the same subject is made. Empty: of
    /// nothing.
    virtual std::string_view subject(std::size_t) const {
        return {};
    }

    /// A name of the call, for the report.
    virtual std::string nameOf(std::size_t item, unsigned call, unsigned index) const = 0;

    /// At once when a call of the item is past the limit, before what was asked before it is handed over.
    virtual void hangs(std::size_t, unsigned) {
    }

    /// In turn: an answer to one of the item's calls.
    virtual void take(std::size_t item, const Answer &answer) = 0;

    /// In turn: this call was past the limit; no answer of the item follows.
    virtual void giveUp(std::size_t item, unsigned call, unsigned index) = 0;

    /// In turn: the recorder could not ask, or not to the end, for a reason of its own.
    virtual void fail(std::size_t item, const std::string &reason) = 0;

    /// In turn, last: nothing more comes of the item. Not called after `fail`.
    virtual void finish(std::size_t item) = 0;
};

class Askers {
public:
    /// `waysToAsk`: by a request's kind. `limit`: of each call, in seconds; 0: none, and this process makes the calls.
    Askers(std::vector<Ask> waysToAsk, unsigned limit, Report &report);
    ~Askers();
    Askers(const Askers &) = delete;
    Askers &operator=(const Askers &) = delete;

    /// That many items are to be asked for. `name` is that of the inquiry for the report's counts. Both last until all is
    /// gathered.
    void add(const char *name, std::size_t items, Inquiry &inquiry);

    /// Asks for what was added, side by side; hands the answers over one inquiry after the other.
    void gather();

    // Of what is asked, so that every module asks in its own way.
    static constexpr std::size_t rawEntry = 0, link = 1, blockEntry = 2, arrayPages = 3, nothing = 4, adapters = 5,
                                 fileSystem = 6;

private:
    class Pool;

    struct Part {
        const char *name;
        std::size_t first; // item, of all that is asked for
        std::size_t count;
        Inquiry *inquiry;
    };

    std::vector<Ask> ways;
    Report &report;
    std::vector<Part> parts;
    std::unique_ptr<Pool> pool; // null without a limit
};

} // namespace record
