#include "record/Keeper.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <exception>

namespace record {
namespace {

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

} // namespace

void keepAskers(const std::vector<Ask> &waysToAsk, Shared &shared, std::array<Pipe, mostAskers> &tokens, Pipe &commands,
                Pipe &bells) {
    Keeper(waysToAsk, shared, tokens, commands, bells).run();
}

} // namespace record
