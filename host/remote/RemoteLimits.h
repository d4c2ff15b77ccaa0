#pragma once

#include <chrono>
#include <functional>

/// How long remote stores may take; see the settings `remote...Ms`.
struct RemoteLimits {
    using Time = std::chrono::milliseconds;

    static constexpr int defaultConnectMs = 10'000;
    static constexpr int defaultFirstByteMs = 30'000;
    static constexpr int defaultStallMs = 30'000;
    static constexpr int defaultQueryMs = 2'000;
    static constexpr int defaultRestMs = 10'000;
    static constexpr int defaultListingMs = 30'000;
    static constexpr int longestMs = 3'600'000;

    /// As the settings say.
    [[nodiscard]] static RemoteLimits read();

    /// Until a copy's connection stands.
    Time connect{defaultConnectMs};
    /// From there until the answer to its request begins.
    Time firstByte{defaultFirstByteMs};
    /// In which no byte of it comes.
    Time stall{defaultStallMs};
    /// All that a question takes: whether a file is there, how large it is, what a clip has.
    Time query{defaultQueryMs};
    /// For which a store isn't asked again after it gave no answer.
    Time rest{defaultRestMs};
    /// For which what a store said of a clip holds.
    Time listing{defaultListingMs};
    /// Until a server that has sent all of a file closes the connection. One that doesn't is in no way at fault, so
    /// this is no setting.
    Time ending{200};
};

/// Tells the time; tests bring their own.
using RemoteClock = std::function<std::chrono::steady_clock::time_point()>;
