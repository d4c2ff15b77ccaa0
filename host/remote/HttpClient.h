#pragma once

#include <map>
#include <mutex>
#include <string>

#include "host/remote/HttpExchange.h"
#include "host/remote/RestingStores.h"

/// What a question asks for.
enum class eHttpQuestion { headers, firstByte, document };

/// What all requests of a process have in common: limits, who asks, and which stores are left alone.
///
/// Threads  Any. Nobody waits for another's request.
class HttpClient {
public:
    explicit HttpClient(RemoteLimits const& limits, RemoteClock clock = &std::chrono::steady_clock::now);

    [[nodiscard]] RemoteLimits const& limits() const { return limits_; }
    [[nodiscard]] std::chrono::steady_clock::time_point now() const { return clock_(); }

    /// Says who asks the store that the URL belongs to, where a URL doesn't say so itself.
    void setCredentials(HttpUrl const& url);

    /// Fetches a file, however long it takes.
    [[nodiscard]] HttpOutcome fetch(HttpUrl const& url, iHttpReceiver& receiver);
    /// Asks a question. A store that gave no answer lately isn't asked.
    ///
    /// @param total  for which it is waited
    [[nodiscard]] HttpOutcome query(HttpUrl const& url, eHttpQuestion question, RemoteLimits::Time total,
                                    iHttpReceiver& receiver);

private:
    [[nodiscard]] HttpRequest requestFor(HttpUrl const& url);
    void note(HttpUrl const& url, HttpOutcome const& outcome);

    RemoteLimits const limits_;
    RemoteClock const clock_;
    RestingStores resting_;
    std::mutex lock_;
    std::map<std::string, HttpCredentials> credentials_;
};
