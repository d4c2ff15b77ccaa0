#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "host/remote/HttpAnswer.h"

/// What a store said of a file.
struct RemoteFacts {
    /// Takes the size from the headers of an answer to a question for the whole file, or for a part of it.
    [[nodiscard]] static RemoteFacts of(HttpHeaders const& headers);

    /// How another file of the same name was seen; empty if it may be the same.
    [[nodiscard]] std::string differenceTo(RemoteFacts const& other) const;

    std::optional<std::uint64_t> size;
    std::string etag;
    std::string lastModified;
};

/// What files were when they were asked for their sizes, so that a copy notices that one has changed since.
///
/// Threads  Any.
class KnownFacts {
public:
    void note(std::string const& url, RemoteFacts const& facts);
    [[nodiscard]] std::optional<RemoteFacts> find(std::string const& url) const;
    void forget(std::string const& url);
    [[nodiscard]] std::size_t size() const;

    /// How many files are remembered; the first that came go first.
    static constexpr std::size_t mostFiles = 4096;

private:
    mutable std::mutex lock_;
    std::map<std::string, RemoteFacts> facts_;
    std::deque<std::string> order_;
};
