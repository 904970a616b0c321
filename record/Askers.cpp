#include "record/Askers.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <new>
#include <optional>
#include <utility>

#include "record/AskerRegion.h"
#include "record/Keeper.h"
#include "record/StopSignals.h"

#ifndef MAP_ANONYMOUS
#define MAP_ANONYMOUS MAP_ANON
#endif

namespace record {
namespace {

constexpr std::size_t usualAskers = 2; // while none hangs
constexpr std::size_t window = 16384;  // items ahead of one that is waited for
constexpr Nanoseconds second = 1'000'000'000;
constexpr Nanoseconds stuckAfter = second / 20; // others take over what such an asker has yet to ask
constexpr Nanoseconds toldAfter = 2 * second;   // who waits wants to know what for
constexpr std::uint32_t allTaken = 1U << 30;

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
                keepAskers(ways, *shared, tokens, commands, bells);
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
        const auto stuck = static_cast<std::size_t>(
            std::ranges::count_if(slots, [](const Slot &slot) { return slot.state == Slot::busy && slot.isStuck; }));
        if (stuck != 0) {
            noteBusySubjects();
        } else {
            busySubjects.clear();
        }
        if (!refusal.empty() && std::ranges::none_of(slots, [](const Slot &slot) {
                return slot.state == Slot::idle || slot.state == Slot::busy;
            })) {
            while (const std::optional<std::size_t> item = nextToAsk()) {
                fail(*item, refusal);
            }
            return;
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
            const Frame hanging{0, Frame::givenUp, region.item.load(), region.call.load(), region.index.load(), 0};
            drain(i);
            if (region.beganAt.load(std::memory_order_acquire) != began[i]) {
                continue; // it went on meanwhile
            }
            if (taken >= limit) {
                giveUp(i, hanging);
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

    void giveUp(std::size_t index, const Frame &hanging) {
        Slot &slot = slots[index];
        slot.state = Slot::ending;
        slot.isStuck = false;
        writeWhole(commands.writer.descriptor, Command{false, static_cast<std::uint32_t>(index), slot.generation});
        const Part &part = partOf(hanging.item);
        part.inquiry->hangs(hanging.item - part.first, hanging.call);
        deliver(hanging, {});
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

} // namespace record
