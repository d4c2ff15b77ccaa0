#include "host/remote/CurlLibrary.h"

#include <csignal>
#include <ctime>

namespace {

/// Connections that one thread keeps open.
constexpr long keptConnections = 2;

thread_local CurlHandles keptHandles;

CurlHandles newHandles() {
    CurlHandles handles{std::unique_ptr<CURLM, CloseMulti>(curl_multi_init()),
                        std::unique_ptr<CURL, CloseEasy>(curl_easy_init())};
    if (handles.multi) {
        curl_multi_setopt(handles.multi.get(), CURLMOPT_MAXCONNECTS, keptConnections);
    }
    return handles;
}

sigset_t pipeSignal() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

bool isPipeSignalPending() {
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
}

}  // namespace

void useCurlLibrary() {
    static CURLcode const ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    static_cast<void>(ready);
}

CurlLease::CurlLease() {
    useCurlLibrary();
    handles_ = std::move(keptHandles);
    if (!handles_.areThere()) {
        handles_ = newHandles();
    }
}

CurlLease::~CurlLease() {
    if (isUsable() && !keptHandles.areThere()) {
        curl_easy_reset(easy());
        keptHandles = std::move(handles_);
    }
}

PipeSignalHeld::PipeSignalHeld() : wasPending_(isPipeSignalPending()) {
    sigset_t const set = pipeSignal();
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &set, &before);
    wasHeld_ = sigismember(&before, SIGPIPE) == 1;
}

PipeSignalHeld::~PipeSignalHeld() {
    sigset_t const set = pipeSignal();
    if (!wasPending_ && isPipeSignalPending()) {
        timespec const now{};
        sigtimedwait(&set, nullptr, &now);
    }
    if (!wasHeld_) {
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    }
}
