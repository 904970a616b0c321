#include <pthread.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string>

#include "description/Names.h"
#include "platform/replay/Host.h"
#include "platform/replay/PlatformCall.h"

// The host as a whole, its processors, and the one thing that no description can tell: the stack that the caller runs on.

namespace replay {
namespace {

using description::NamedValue;
using description::sysconfNames;
using description::sysinfoCommands;

/// The name of the number, or the number.
std::string nameOf(int value, std::span<const NamedValue> names) {
    const auto found = std::ranges::find(names, value, &NamedValue::value);
    return found == names.end() ? std::to_string(value) : std::string(found->name);
}

/// The calling thread's stack on the build machine, or the error number that stands for it.
struct Stack {
    stack_t segment{};
    int error;

    Stack() {
        pthread_attr_t attributes;
        error = pthread_getattr_np(pthread_self(), &attributes);
        if (error != 0) {
            return;
        }
        void *lowest = nullptr;
        error = pthread_attr_getstack(&attributes, &lowest, &segment.ss_size);
        segment.ss_sp = static_cast<char *>(lowest) + segment.ss_size;
        pthread_attr_destroy(&attributes);
    }
};

} // namespace
} // namespace replay

namespace solaris {

using namespace replay;

int sysinfo(int command, char *buffer, long count) {
    const auto line = [&] { return "sysinfo " + nameOf(command, sysinfoCommands); };
    return answerCall(line, [&] {
        const std::shared_ptr<const Host> host = currentHost();
        const auto found = host->sysinfo.find(command);
        if (found == host->sysinfo.end()) {
            return failWith(EINVAL);
        }
        const std::string &text = found->second;
        if (count > 0) {
            const std::size_t length = std::min(text.size(), static_cast<std::size_t>(count) - 1);
            std::memcpy(buffer, text.data(), length);
            buffer[length] = '\0';
        }
        return static_cast<int>(text.size()) + 1;
    });
}

int uname(struct utsname *name) {
    const auto line = [] { return std::string("uname"); };
    return answerCall(line, [&] {
        const std::shared_ptr<const Host> host = currentHost();
        if (!host->uname) {
            return failWith(ENOSYS);
        }
        *name = *host->uname;
        return 0;
    });
}

long sysconf(int name) {
    const auto line = [&] { return "sysconf " + nameOf(name, sysconfNames); };
    return answerCall(line, [&] {
        const std::shared_ptr<const Host> host = currentHost();
        const auto found = host->sysconf.find(name);
        return found == host->sysconf.end() ? failWith<long>(EINVAL) : found->second;
    });
}

/// A replayed second passes at once; refused, the sleep is broken off with all of it left.
unsigned sleep(unsigned seconds) {
    return noteCall([&] { return "sleep " + std::to_string(seconds); }) ? seconds : 0;
}

int processor_info(processorid_t processor, processor_info_t *information) {
    const auto line = [&] { return "processor_info " + std::to_string(processor); };
    return answerCall(line, [&] {
        const std::shared_ptr<const Host> host = currentHost();
        const auto found = host->processors.find(processor);
        if (found == host->processors.end()) {
            return failWith(EINVAL);
        }
        *information = static_cast<const processor_info_t &>(found->second);
        return 0;
    });
}

int thr_stksegment(stack_t *segment) {
    if (noteCall([] { return std::string("thr_stksegment"); })) {
        return EIO;
    }
    thread_local const Stack stack; // for the first thread, the build machine reads a whole file to tell
    *segment = stack.segment;
    return stack.error;
}

} // namespace solaris
