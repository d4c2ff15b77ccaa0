#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "tests/fakes/Gate.h"
#include "toolkit/image/ReadRequestIssuer.h"

/// Remembers every call that ends a read, and lets a test wait for them.
///
/// Threads  Any.
class RecordingIssuer : public ReadRequestIssuer {
public:
    struct Call {
        Ox::Ptr<iObject> result;
        RequestStatus status;
        std::thread::id thread;
        /// Counts the calls of all issuers of the process.
        unsigned order;
    };

    RecordingIssuer() = default;
    /// @param onCall  run inside each call, after it is recorded
    explicit RecordingIssuer(std::function<void(Call const&)> onCall) : onCall_(std::move(onCall)) {}
    ~RecordingIssuer() override { withdraw(); }

    void requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) override;

    /// False if fewer than `count` calls have come within the patience.
    [[nodiscard]] bool waitForCalls(std::size_t count, std::chrono::seconds patience = testPatience);
    /// False if none has come within `waitMs` milliseconds.
    [[nodiscard]] bool waitForCall(unsigned waitMs);
    [[nodiscard]] std::vector<Call> calls() const;
    [[nodiscard]] std::size_t callCount() const { return calls().size(); }
    /// The only call there is.
    [[nodiscard]] Call only() const;

private:
    std::function<void(Call const&)> const onCall_;
    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::vector<Call> calls_;
};
