#include "record/StopSignals.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <initializer_list>

namespace record {
namespace {

volatile std::sig_atomic_t stopSignal = 0;
int stopPipe[2] = {-1, -1};

extern "C" void noteStop(int signal) {
    const int error = errno;
    stopSignal = signal;
    static_cast<void>(::write(stopPipe[1], "", 1) == 1);
    errno = error;
}

} // namespace

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
