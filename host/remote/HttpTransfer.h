#pragma once

#include <chrono>
#include <exception>
#include <optional>
#include <string>

#include "host/remote/CurlLibrary.h"
#include "host/remote/HttpAnswer.h"
#include "host/remote/HttpExchange.h"

/// One request and its answer.
///
/// Threads  One, which it blocks; but for the receiver's functions for no longer than the limits say.
/// Errors   Exceptions of the receiver pass through.
class HttpTransfer {
public:
    HttpTransfer(HttpRequest const& request, iHttpReceiver& receiver);
    HttpTransfer(HttpTransfer const&) = delete;
    HttpTransfer& operator=(HttpTransfer const&) = delete;

    [[nodiscard]] HttpOutcome run();

private:
    using Clock = std::chrono::steady_clock;

    void prepare();
    void prepareConnection();
    void prepareRequest();
    void step();
    void endIfDone();
    void endIfOverdue(Clock::time_point now);
    void endIfWhole(Clock::time_point now);
    void endWith(eHttpEnd end, std::string reason = {});
    void endWithCurl(CURLcode code);
    void ask(Clock::time_point now);
    bool takeLine(std::string_view line);
    bool takeBody(char const* data, std::size_t byteCount);
    [[nodiscard]] bool isRequestSent() const;
    [[nodiscard]] std::string silence() const;
    [[nodiscard]] int waitMs() const;

    static std::size_t onLine(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    /// Runs a function of the receiver; an exception counts as false and is kept.
    template <class Function>
    bool guarded(Function const& function) noexcept;

    HttpRequest const& request_;
    iHttpReceiver& receiver_;
    CurlLease const lease_;
    HttpAnswer answer_;
    std::optional<HttpOutcome> outcome_;
    std::exception_ptr exception_;

    Clock::time_point const start_ = Clock::now();
    /// When the receiver was last asked, and the bytes since then.
    Clock::time_point lastAsked_ = start_;
    std::size_t bytesSinceAsked_ = 0;
    /// When it was last seen that something happens.
    Clock::time_point lastLife_ = start_;
    bool wasSent_ = false;
    unsigned blocksSeen_ = 0;
    std::optional<Clock::time_point> wholeSince_;
};
