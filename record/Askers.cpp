#include "record/Askers.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <deque>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#ifndef MAP_ANONYMOUS
#define MAP_ANONYMOUS MAP_ANON
#endif

namespace record {
namespace {

using Nanoseconds = std::uint64_t;

constexpr std::size_t mostAskers = 64;   // at once
constexpr std::size_t usualAskers = 2;   // while none hangs
constexpr std::size_t largestBatch = 64; // requests for an asker
constexpr std::size_t window = 16384;    // items ahead of one that is waited for
constexpr Nanoseconds second = 1'000'000'000;
constexpr Nanoseconds stuckAfter = second / 20; // others take over what such an asker has yet to ask
constexpr Nanoseconds toldAfter = 2 * second;   // who waits wants to know what for

Nanoseconds now() {
    return static_cast<Nanoseconds>(std::chrono::steady_clock::now().time_since_epoch().count());
}

/// What came of a call, or of an item. The data follow.
struct Frame {
    enum Kind : std::uint32_t { answer, givenUp, failed, finished };

    std::uint32_t dataSize;
    Kind kind;
    std::uint32_t item;
    std::uint32_t call;
    std::uint32_t index;
    std::int32_t error;

    std::size_t size() const {
        return sizeof(Frame) + (dataSize + std::size_t{7}) / 8 * 8;
    }
};

struct PlacedRequest {
    std::uint32_t item;
    std::uint32_t kind;
    std::uint32_t at; // of its text
    std::uint32_t size;
};

/// What an asker and the recorder share.
struct Region {
    std::atomic<Nanoseconds> beganAt; // of the call that is under way; 0: none is
    std::atomic<std::uint32_t> call;
    std::atomic<std::uint32_t> index;
    std::atomic<std::uint32_t> item;
    std::atomic<std::uint32_t> next; // request of the batch; whoever raises it has those in between
    std::uint32_t count;             // of requests
    std::atomic<std::uint32_t> written;
    std::atomic<bool> wantsRoom;
    std::atomic<bool> isDone; // with the batch
    std::array<PlacedRequest, largestBatch> requests;
    std::array<char, 65536> texts;
    std::array<std::byte, Teller::mostData + 65536> frames;
};
constexpr std::uint32_t allTaken = 1U << 30;

/// To the keeper.
struct Command {
    bool isStart; // otherwise the slot's asker is to be ended
    std::uint32_t slot;
    std::uint32_t generation;
};

/// To the recorder.
struct Bell {
    enum Kind : std::uint32_t { rings, hasDied, isGone, isRefused };

    Kind kind;
    std::uint32_t slot;
    std::uint32_t generation;
    std::int32_t detail; // a wait status, or an errno
};

/// The end of a pipe: the system's own, whatever the door leads to.
class PipeEnd {
public:
    PipeEnd() = default;
    ~PipeEnd() {
        close();
    }
    PipeEnd(const PipeEnd &) = delete;
    PipeEnd &operator=(const PipeEnd &) = delete;

    void close() {
        if (descriptor != -1) {
            ::close(std::exchange(descriptor, -1));
        }
    }

    int descriptor = -1;
};

struct Pipe {
    PipeEnd reader;
    PipeEnd writer;

    /// 0, or an errno.
    int open() {
        int ends[2];
        if (::pipe(ends) != 0) {
            return errno;
        }
        reader.descriptor = ends[0];
        writer.descriptor = ends[1];
        return 0;
    }
};

template <class T>
bool readWhole(int descriptor, T &value) {
    ssize_t size = 0;
    do {
        size = ::read(descriptor, &value, sizeof value); // is written at once, and shorter than what a pipe takes whole
    } while (size < 0 && errno == EINTR);
    return size == static_cast<ssize_t>(sizeof value);
}

template <class T>
bool writeWhole(int descriptor, const T &value) {
    ssize_t size = 0;
    do {
        size = ::write(descriptor, &value, sizeof value);
    } while (size < 0 && errno == EINTR);
    return size == static_cast<ssize_t>(sizeof value);
}

struct Shared {
    std::array<Region, mostAskers> regions;
};

class AskersTeller : public Teller {
public:
    AskersTeller(Region &shared, int toReadFrom, int bellDescriptor, Bell ownBell)
        : region(shared), tokens(toReadFrom), bells(bellDescriptor), bell(ownBell) {
    }

    void begin(unsigned call, unsigned index) override {
        region.call.store(call, std::memory_order_relaxed);
        region.index.store(index, std::memory_order_relaxed);
        region.beganAt.store(now(), std::memory_order_release);
    }

    void tell(unsigned call, int error, std::span<const std::byte> data, unsigned index) override {
        put(Frame::answer, call, error, data, index);
    }

    void finish() {
        put(Frame::finished, 0, 0, {}, 0);
    }

    void ring() {
        if (!writeWhole(bells, bell)) {
            ::_exit(0); // nobody listens
        }
    }

    /// Tokens may be left of an asker before this one.
    void waitForToken() {
        std::uint32_t token = bell.generation - 1;
        while (token != bell.generation) {
            if (!readWhole(tokens, token)) {
                ::_exit(0); // nobody asks any more
            }
        }
    }

private:
    void put(Frame::Kind kind, unsigned call, int error, std::span<const std::byte> data, unsigned index) {
        region.beganAt.store(0, std::memory_order_release);
        const Frame frame{static_cast<std::uint32_t>(data.size()), kind, region.item.load(), call, index, error};
        if (frame.size() > region.frames.size() - region.written.load()) {
            region.wantsRoom.store(true);
            ring();
            waitForToken();
        }
        const std::uint32_t at = region.written.load();
        std::memcpy(region.frames.data() + at, &frame, sizeof frame);
        if (!data.empty()) {
            std::memcpy(region.frames.data() + at + sizeof frame, data.data(), data.size());
        }
        region.written.store(at + static_cast<std::uint32_t>(frame.size()), std::memory_order_release);
    }

    Region &region;
    int tokens;
    int bells;
    Bell bell;
};

/// An asker: answers one batch after the other, until the recorder is gone.
[[noreturn]] void askUntilTheEnd(const std::vector<Ask> &ways, Region &region, AskersTeller teller) {
    try {
        for (;;) {
            teller.waitForToken();
            for (std::uint32_t i = region.next.fetch_add(1); i < region.count; i = region.next.fetch_add(1)) {
                const PlacedRequest &request = region.requests[i];
                region.item.store(request.item);
                ways[request.kind]({region.texts.data() + request.at, request.size}, teller);
                teller.finish();
            }
            region.isDone.store(true);
            teller.ring();
        }
    } catch (const std::exception &) {
        ::_exit(1);
    }
}

/// Begins and ends askers as it is told, and ends with the recorder.
class Keeper {
public:
    Keeper(const std::vector<Ask> &waysToAsk, Shared &sharedRegions, std::array<Pipe, mostAskers> &tokenPipes,
           Pipe &commandPipe, Pipe &bellPipe)
        : ways(waysToAsk), shared(sharedRegions), tokens(tokenPipes), commands(commandPipe), bells(bellPipe) {
    }

    [[noreturn]] void run() {
        leaveTheRecorder();
        for (;;) {
            pollfd waited{commands.reader.descriptor, POLLIN, 0};
            constexpr int untilTheDeadAreSought = 50; // milliseconds
            if (::poll(&waited, 1, untilTheDeadAreSought) > 0) {
                Command command{};
                if (!readWhole(commands.reader.descriptor, command)) {
                    endAll();
                }
                if (command.isStart) {
                    start(command);
                } else {
                    end(command);
                }
            }
            buryTheDead();
        }
    }

private:
    struct Child {
        pid_t process = 0; // 0: there is none
        std::uint32_t generation = 0;
    };

    /// What the recorder's terminal and its readers do is not for this process and its children, nor may what a library
    /// prints go to a device that got a standard stream's place.
    void leaveTheRecorder() {
        const int nowhere = ::open("/dev/null", O_RDWR);
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::dup2(nowhere, standard);
        }
        if (nowhere > STDERR_FILENO) {
            ::close(nowhere);
        }
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            static_cast<void>(std::signal(signal, SIG_IGN));
        }
        static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
        commands.writer.close();
        bells.reader.close();
        for (Pipe &each : tokens) {
            each.writer.close();
        }
    }

    void start(const Command &command) {
        const Bell bell{Bell::rings, command.slot, command.generation, 0};
        const pid_t process = ::fork();
        if (process == 0) {
            commands.reader.close();
            for (Pipe &each : tokens) {
                if (&each != &tokens[command.slot]) {
                    each.reader.close();
                }
            }
            Region &region = shared.regions[command.slot];
            askUntilTheEnd(ways, region,
                           {region, tokens[command.slot].reader.descriptor, bells.writer.descriptor, bell});
        }
        if (process == -1) {
            writeWhole(bells.writer.descriptor, Bell{Bell::isRefused, command.slot, command.generation, errno});
            return;
        }
        children[command.slot] = {process, command.generation};
    }

    /// One that hangs in the system does not notice, but never gets to its own code again.
    void end(const Command &command) {
        Child &child = children[command.slot];
        if (child.process != 0) {
            ::kill(child.process, SIGKILL);
            for (int i = 0; i < 10 && ::waitpid(child.process, nullptr, WNOHANG) == 0; ++i) {
                ::poll(nullptr, 0, 1);
            }
            child.process = 0;
        }
        writeWhole(bells.writer.descriptor, Bell{Bell::isGone, command.slot, command.generation, 0});
    }

    void buryTheDead() {
        int status = 0;
        while (const pid_t process = ::waitpid(-1, &status, WNOHANG)) {
            if (process == -1) {
                return;
            }
            const auto child = std::ranges::find(children, process, &Child::process);
            if (child != children.end()) {
                child->process = 0;
                writeWhole(bells.writer.descriptor,
                           Bell{Bell::hasDied, static_cast<std::uint32_t>(child - children.begin()), child->generation,
                                status});
            }
        }
    }

    [[noreturn]] void endAll() {
        for (const Child &child : children) {
            if (child.process != 0) {
                ::kill(child.process, SIGKILL);
            }
        }
        for (int i = 0; i < 100 && ::waitpid(-1, nullptr, WNOHANG) != -1; ++i) { // until none is left, or only such
            ::poll(nullptr, 0, 1);                                               // as hang in the system
        }
        ::_exit(0);
    }

    const std::vector<Ask> &ways;
    Shared &shared;
    std::array<Pipe, mostAskers> &tokens;
    Pipe &commands;
    Pipe &bells;
    std::array<Child, mostAskers> children;
};

class DirectTeller : public Teller {
public:
    DirectTeller(Inquiry &toAnswer, std::size_t itemToAnswer) : inquiry(toAnswer), item(itemToAnswer) {
    }
    void begin(unsigned, unsigned) override {
    }
    void tell(unsigned call, int error, std::span<const std::byte> data, unsigned index) override {
        inquiry.take(item, {call, index, error, data});
    }

private:
    Inquiry &inquiry;
    std::size_t item;
};

volatile std::sig_atomic_t stopSignal = 0;
int stopPipe[2] = {-1, -1};

extern "C" void noteStop(int signal) {
    const int error = errno;
    stopSignal = signal;
    static_cast<void>(::write(stopPipe[1], "", 1) == 1);
    errno = error;
}

} // namespace

/// The askers, as the recorder sees them.
class Askers::Pool {
public:
    Pool(const std::vector<Ask> &ways, unsigned limitInSeconds, Report &toReport)
        : limit(limitInSeconds * second), report(toReport) {
        void *const memory = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        int error = memory == MAP_FAILED ? errno : 0;
        shared = memory == MAP_FAILED ? nullptr : new (memory) Shared;
        for (Pipe *each : {&commands, &bells}) {
            error = error == 0 ? each->open() : error;
        }
        for (Pipe &each : tokens) {
            error = error == 0 ? each.open() : error;
        }
        if (shared != nullptr && error == 0) {
            keeper = ::fork();
            if (keeper == 0) {
                Keeper(ways, *shared, tokens, commands, bells).run();
            }
            error = keeper == -1 ? errno : 0;
        }
        for (Pipe &each : tokens) {
            each.reader.close();
        }
        commands.reader.close();
        bells.writer.close();
        if (error != 0) {
            refusal = "no process to ask: " + errnoText(error);
        }
        for (std::size_t i = 0; i < usualAskers && refusal.empty(); ++i) {
            start(i);
        }
    }

    ~Pool() {
        commands.writer.close();
        if (keeper > 0) {
            while (::waitpid(keeper, nullptr, 0) == -1 && errno == EINTR) {
            }
        }
        if (shared != nullptr) {
            ::munmap(shared, sizeof(Shared));
        }
    }
    Pool(const Pool &) = delete;
    Pool &operator=(const Pool &) = delete;

    void gather(const std::vector<Part> &asked) {
        parts = asked;
        items = parts.empty() ? 0 : parts.back().first + parts.back().count;
        nextNew = 0;
        nextItem = 0;
        returned.clear();
        kept.clear();
        busySubjects.clear();
        while (nextItem < items && !isStopped()) {
            handOut();
            if (nextItem < items) {
                wait();
                takeBells();
                watch();
            }
        }
        if (nextItem < items) {
            stop();
        }
    }

private:
    struct Slot {
        enum State { free, idle, busy, ending };

        State state = free;
        std::uint32_t generation = 0;
        std::vector<std::size_t> batch;
        std::size_t finished = 0; // of the batch
        std::size_t consumed = 0; // bytes of frames
        bool isStuck = false;
    };

    // Handing out.

    void start(std::size_t slot) {
        slots[slot].state = Slot::idle;
        ++slots[slot].generation;
        writeWhole(commands.writer.descriptor, Command{true, static_cast<std::uint32_t>(slot), slots[slot].generation});
    }

    const Part &partOf(std::size_t item) const {
        return *std::ranges::find_if(parts, [&](const Part &part) { return item - part.first < part.count; });
    }

    std::string_view subjectOf(std::size_t item) const {
        const Part &part = partOf(item);
        return part.inquiry->subject(item - part.first);
    }

    bool isOfBusySubject(std::size_t item) const {
        const std::string_view subject = subjectOf(item);
        return !subject.empty() && std::ranges::find(busySubjects, subject) != busySubjects.end();
    }

    /// While something hangs, what else is being asked for may turn out to hang as well.
    void noteBusySubjects() {
        busySubjects.clear();
        for (const Slot &slot : slots) {
            if (slot.state == Slot::busy && slot.finished < slot.batch.size()) {
                busySubjects.push_back(subjectOf(slot.batch[slot.finished]));
            }
        }
    }

    /// An item that is to be asked for now.
    std::optional<std::size_t> nextToAsk() {
        for (auto item = returned.begin(); item != returned.end(); ++item) {
            if (!isOfBusySubject(*item)) {
                const std::size_t found = *item;
                returned.erase(item);
                return found;
            }
        }
        while (nextNew < std::min(items, nextItem + window)) {
            const std::size_t item = nextNew++;
            if (!isOfBusySubject(item)) {
                return item;
            }
            returned.push_back(item);
        }
        return std::nullopt;
    }

    void handOut() {
        if (!refusal.empty() && std::ranges::none_of(slots, [](const Slot &slot) {
                return slot.state == Slot::idle || slot.state == Slot::busy;
            })) {
            while (const std::optional<std::size_t> item = nextToAsk()) {
                fail(*item, refusal);
            }
            return;
        }
        const auto stuck = static_cast<std::size_t>(
            std::ranges::count_if(slots, [](const Slot &slot) { return slot.state == Slot::busy && slot.isStuck; }));
        if (stuck != 0) {
            noteBusySubjects();
        } else {
            busySubjects.clear();
        }
        const auto going = static_cast<std::size_t>(std::ranges::count_if(slots, [](const Slot &slot) {
            return slot.state == Slot::idle || (slot.state == Slot::busy && !slot.isStuck);
        }));
        // For each that hangs there is another, soon.
        std::size_t missing = std::max(usualAskers, stuck) - std::min(going, std::max(usualAskers, stuck));
        for (std::size_t i = 0; i < slots.size(); ++i) {
            if (slots[i].state == Slot::free && missing > 0 && refusal.empty() && hasMore()) {
                --missing;
                start(i);
            }
            if (slots[i].state == Slot::idle) {
                handTo(i, stuck == 0 ? largestBatch : 1);
            }
        }
    }

    bool hasMore() const {
        return !returned.empty() || nextNew < std::min(items, nextItem + window);
    }

    void handTo(std::size_t index, std::size_t most) {
        Slot &slot = slots[index];
        Region &region = shared->regions[index];
        std::uint32_t at = 0;
        slot.batch.clear();
        while (slot.batch.size() < most) {
            const std::optional<std::size_t> item = nextToAsk();
            if (!item) {
                break;
            }
            const Part &part = partOf(*item);
            const Request request = part.inquiry->request(*item - part.first);
            if (request.text.size() > region.texts.size()) {
                fail(*item, "its name is too long to ask");
                continue;
            }
            if (request.text.size() > region.texts.size() - at) {
                returned.push_front(*item);
                break;
            }
            const auto size = static_cast<std::uint32_t>(request.text.size());
            std::ranges::copy(request.text, region.texts.begin() + at);
            region.requests[slot.batch.size()] = {static_cast<std::uint32_t>(*item),
                                                  static_cast<std::uint32_t>(request.kind), at, size};
            at += size;
            slot.batch.push_back(*item);
            if (most == 1) {
                busySubjects.push_back(subjectOf(*item));
            }
        }
        if (slot.batch.empty()) {
            return;
        }
        slot.state = Slot::busy;
        slot.finished = 0;
        slot.consumed = 0;
        slot.isStuck = false;
        region.count = static_cast<std::uint32_t>(slot.batch.size());
        region.beganAt.store(0);
        region.written.store(0);
        region.wantsRoom.store(false);
        region.isDone.store(false);
        region.next.store(0);
        giveToken(index);
    }

    void giveToken(std::size_t index) {
        writeWhole(tokens[index].writer.descriptor, slots[index].generation);
    }

    // Taking in.

    void wait() {
        const Nanoseconds time = now();
        Nanoseconds until = second;
        for (std::size_t i = 0; i < slots.size(); ++i) {
            if (slots[i].state == Slot::busy) {
                const Nanoseconds began = shared->regions[i].beganAt.load(std::memory_order_acquire);
                const Nanoseconds end = began + limit;
                until = std::min(until, !slots[i].isStuck || began == 0 ? stuckAfter : end > time ? end - time : 0);
            }
        }
        pollfd waited[] = {{bells.reader.descriptor, POLLIN, 0}, {stopDescriptor(), POLLIN, 0}};
        ::poll(waited, std::size(waited), static_cast<int>((until + 999'999) / 1'000'000));
    }

    void takeBells() {
        for (pollfd waited{bells.reader.descriptor, POLLIN, 0}; ::poll(&waited, 1, 0) > 0;) {
            Bell bell{};
            if (!readWhole(bells.reader.descriptor, bell)) {
                loseAll();
                return;
            }
            if (bell.generation == slots[bell.slot].generation) {
                take(bell);
            }
        }
    }

    void take(const Bell &bell) {
        Slot &slot = slots[bell.slot];
        Region &region = shared->regions[bell.slot];
        switch (bell.kind) {
        case Bell::rings:
            drain(bell.slot); // all that was told before the bell was rung
            if (slot.state == Slot::busy && region.isDone.exchange(false)) {
                slot.state = Slot::idle;
            } else if (region.wantsRoom.exchange(false)) { // and from then on it tells more
                slot.consumed = 0;
                region.written.store(0);
                giveToken(bell.slot);
            }
            break;
        case Bell::hasDied:
            lose(bell.slot, WIFSIGNALED(bell.detail) ? "signal " + std::to_string(WTERMSIG(bell.detail))
                                                     : "status " + std::to_string(WEXITSTATUS(bell.detail)));
            break;
        case Bell::isGone:
            slot.state = Slot::free;
            break;
        case Bell::isRefused:
            refusal = "no process to ask: " + errnoText(bell.detail);
            withdraw(bell.slot);
            slot.state = Slot::free;
            break;
        }
    }

    void drain(std::size_t index) {
        Slot &slot = slots[index];
        Region &region = shared->regions[index];
        const std::size_t end = region.written.load(std::memory_order_acquire);
        while (slot.state == Slot::busy && slot.consumed < end) {
            Frame frame;
            std::memcpy(&frame, region.frames.data() + slot.consumed, sizeof frame);
            const std::span data(region.frames.data() + slot.consumed + sizeof frame, frame.dataSize);
            slot.consumed += frame.size();
            slot.finished += frame.kind == Frame::finished ? 1 : 0;
            deliver(frame, data);
        }
    }

    /// Takes back what the slot's asker has not begun to ask for.
    void withdraw(std::size_t index) {
        Slot &slot = slots[index];
        const std::size_t begun = shared->regions[index].next.exchange(allTaken);
        if (slot.state == Slot::busy && begun < slot.batch.size()) {
            returned.insert(returned.begin(), slot.batch.begin() + static_cast<std::ptrdiff_t>(begun),
                            slot.batch.end());
            slot.batch.resize(begun);
        }
    }

    /// What hangs for a while keeps nothing from the others; what hangs too long is given up.
    void watch() {
        const Nanoseconds time = now();
        std::optional<std::size_t> longest;
        std::array<Nanoseconds, mostAskers> began{};
        for (std::size_t i = 0; i < slots.size(); ++i) {
            Region &region = shared->regions[i];
            began[i] = slots[i].state == Slot::busy ? region.beganAt.load(std::memory_order_acquire) : 0;
            const Nanoseconds taken = began[i] != 0 && time > began[i] ? time - began[i] : 0;
            slots[i].isStuck = taken >= stuckAfter;
            if (!slots[i].isStuck) {
                continue;
            }
            withdraw(i);
            const std::size_t item = region.item.load();
            drain(i);
            if (region.beganAt.load(std::memory_order_acquire) != began[i]) {
                continue; // it went on meanwhile
            }
            if (taken >= limit) {
                giveUp(i, item);
                continue;
            }
            if (taken >= toldAfter && (!longest || began[i] < began[*longest])) {
                longest = i;
            }
        }
        if (longest) {
            const Region &region = shared->regions[*longest];
            const std::size_t item = region.item.load();
            const Part &part = partOf(item);
            const std::size_t done = nextItem > part.first ? nextItem - part.first : 0;
            report.waiting(part.name, done, part.count, [&] {
                return part.inquiry->nameOf(item - part.first, region.call.load(), region.index.load());
            });
        }
    }

    void giveUp(std::size_t index, std::size_t item) {
        Slot &slot = slots[index];
        const Region &region = shared->regions[index];
        const unsigned call = region.call.load();
        slot.state = Slot::ending;
        slot.isStuck = false;
        writeWhole(commands.writer.descriptor, Command{false, static_cast<std::uint32_t>(index), slot.generation});
        const Part &part = partOf(item);
        part.inquiry->hangs(item - part.first, call);
        deliver({0, Frame::givenUp, static_cast<std::uint32_t>(item), call, region.index.load(), 0}, {});
    }

    /// An asker has ended that should not have.
    void lose(std::size_t index, const std::string &how) {
        Slot &slot = slots[index];
        if (slot.state == Slot::busy) {
            withdraw(index);
            drain(index);
            if (slot.batch.empty() && ++deathsAtBirth == usualAskers) {
                refusal = "the process that asks ended with " + how;
            }
            for (std::size_t i = slot.finished; i < slot.batch.size(); ++i) {
                fail(slot.batch[i], "the process that asked ended with " + how);
            }
        }
        slot.state = Slot::free;
    }

    void loseAll() {
        refusal = "no process to ask: " + errnoText(ECHILD);
        for (std::size_t i = 0; i < slots.size(); ++i) {
            lose(i, "all others");
        }
    }

    void fail(std::size_t item, const std::string &reason) {
        deliver({static_cast<std::uint32_t>(reason.size()), Frame::failed, static_cast<std::uint32_t>(item), 0, 0, 0},
                std::as_bytes(std::span(reason)));
    }

    // Handing over, in the order of the items.

    void deliver(const Frame &frame, std::span<const std::byte> data) {
        if (frame.item != nextItem) {
            keep(frame, data);
            return;
        }
        hand(frame, data);
        while (!kept.empty() && !kept.front().empty()) { // what is not whole yet goes on to be handed over as it comes
            handAll(std::exchange(kept.front(), {}));
        }
    }

    void keep(const Frame &frame, std::span<const std::byte> data) {
        const std::size_t at = frame.item - nextItem;
        if (kept.size() <= at) {
            kept.resize(at + 1);
        }
        std::vector<std::byte> &frames = kept[at];
        const std::size_t end = frames.size();
        frames.resize(end + frame.size());
        std::memcpy(frames.data() + end, &frame, sizeof frame);
        std::ranges::copy(data, frames.begin() + static_cast<std::ptrdiff_t>(end + sizeof frame));
    }

    void handAll(const std::vector<std::byte> &whole) {
        std::span<const std::byte> frames = whole;
        while (!frames.empty()) {
            Frame frame;
            std::memcpy(&frame, frames.data(), sizeof frame);
            hand(frame, frames.subspan(sizeof frame, frame.dataSize));
            frames = frames.subspan(frame.size());
        }
    }

    void hand(const Frame &frame, std::span<const std::byte> data) {
        const Part &part = partOf(frame.item);
        Inquiry &inquiry = *part.inquiry;
        const std::size_t item = frame.item - part.first;
        switch (frame.kind) {
        case Frame::answer:
            inquiry.take(item, {frame.call, frame.index, frame.error, data});
            return;
        case Frame::givenUp:
            inquiry.giveUp(item, frame.call, frame.index);
            inquiry.finish(item);
            break;
        case Frame::failed:
            inquiry.fail(item, {reinterpret_cast<const char *>(data.data()), data.size()});
            break;
        case Frame::finished:
            inquiry.finish(item);
            break;
        }
        nextItem = frame.item + std::size_t{1};
        if (!kept.empty()) {
            kept.pop_front();
        }
        report.progress(part.name, item + 1, part.count);
    }

    /// Hands over what is known: who takes it drops what is not whole.
    void stop() {
        for (std::size_t i = 0; i < slots.size(); ++i) {
            drain(i);
        }
        do {
            fail(nextItem, "stopped");
        } while (nextItem < items && !kept.empty());
    }

    const Nanoseconds limit;
    Report &report;
    Shared *shared = nullptr;
    Pipe commands;
    Pipe bells;
    std::array<Pipe, mostAskers> tokens;
    pid_t keeper = -1;
    std::string refusal; // why no asker can be begun; empty when it can
    std::size_t deathsAtBirth = 0;
    std::array<Slot, mostAskers> slots;

    // Of the inquiries that are being made.
    std::vector<Part> parts;
    std::size_t items = 0;
    std::size_t nextNew = 0;                    // the first item that nobody was asked for
    std::deque<std::size_t> returned;           // items before it that nobody is asked for any more
    std::vector<std::string_view> busySubjects; // of which nothing is to be asked now
    std::size_t nextItem = 0;                   // the next to be handed over
    std::deque<std::vector<std::byte>> kept;    // what is known, from that item on
};

Askers::Askers(std::vector<Ask> waysToAsk, unsigned limit, Report &toReport)
    : ways(std::move(waysToAsk)), report(toReport) {
    if (limit != 0) {
        pool = std::make_unique<Pool>(ways, limit, toReport);
    }
}

Askers::~Askers() = default;

void Askers::add(const char *name, std::size_t items, Inquiry &inquiry) {
    const std::size_t first = parts.empty() ? 0 : parts.back().first + parts.back().count;
    parts.push_back({name, first, items, &inquiry});
}

void Askers::gather() {
    const std::vector<Part> asked = std::exchange(parts, {});
    if (pool != nullptr) {
        pool->gather(asked);
        return;
    }
    for (const Part &part : asked) {
        for (std::size_t i = 0; i < part.count && !isStopped(); ++i) {
            report.progress(part.name, i, part.count);
            const Request request = part.inquiry->request(i);
            DirectTeller teller(*part.inquiry, i);
            ways[request.kind](request.text, teller);
            part.inquiry->finish(i);
        }
    }
}

void stopOnSignals() {
    if (::pipe(stopPipe) != 0) {
        return; // signals end the recorder, then
    }
    struct sigaction action {};
    action.sa_handler = noteStop;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND); // a second one ends it at once
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM}) {
        ::sigaction(signal, &action, nullptr);
    }
}

bool isStopped() {
    return stopSignal != 0;
}

int stopDescriptor() {
    return stopPipe[0];
}

} // namespace record
