#include "tools/playfile/Interrupt.h"

#include <atomic>
#include <csignal>

#include "tools/playfile/CommandError.h"

namespace cli {
namespace {

/// The signal that came, 0 for none.
std::atomic<int> noted{0};
static_assert(std::atomic<int>::is_always_lock_free, "it is written by a signal handler");

void note(int signalNumber) {
    noted.store(signalNumber, std::memory_order_relaxed);
}

/// A signal that was ignored from the start stays so: the program may have been told to outlive its
/// terminal.
void noteSignal(int signalNumber) {
    struct sigaction former {};
    sigaction(signalNumber, nullptr, &former);
    if (former.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action {};
    sigemptyset(&action.sa_mask);
    action.sa_handler = &note;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigaction(signalNumber, &action, nullptr);
}

}  // namespace

void handleSignals() {
    for (int const signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        noteSignal(signalNumber);
    }
    struct sigaction ignored {};
    sigemptyset(&ignored.sa_mask);
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignored, nullptr);
}

void checkForInterrupt() {
    if (int const signalNumber = noted.load(std::memory_order_relaxed); signalNumber != 0) {
        throw Stopped(signalNumber);
    }
}

}  // namespace cli
