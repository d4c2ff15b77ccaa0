#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/remote/RemoteLimits.h"

/// What was answered lately, for each key. Who asks for a key that another thread is asking for waits for that
/// answer; questions of different keys don't wait for each other.
///
/// Threads  Any.
template <class Value>
class AnswerCache {
public:
    using Answer = std::shared_ptr<Value const>;
    /// An answer, and for how long it holds.
    struct Found {
        Answer answer;
        RemoteLimits::Time holds;
    };

    /// @param mostKeys  answers that are kept; beyond them the one goes that would end first
    AnswerCache(std::size_t mostKeys, RemoteClock clock) : mostKeys_(mostKeys), clock_(std::move(clock)) {}

    /// What is known, else what `ask` says, which is called without a lock.
    ///
    /// @return never null; an exception of `ask` passes through, and nothing is kept then
    [[nodiscard]] Answer get(std::string const& key, std::function<Found()> const& ask) {
        std::unique_lock scope(lock_);
        for (;;) {
            auto const entry = entries_.find(key);
            if (entry == entries_.end() || (!entry->second.isAsking && clock_() >= entry->second.until)) {
                break;
            }
            if (!entry->second.isAsking) {
                return entry->second.answer;
            }
            answered_.wait(scope);
        }
        entries_[key] = Entry();
        scope.unlock();
        return store(key, ask);
    }

    [[nodiscard]] std::size_t size() const {
        std::lock_guard const scope(lock_);
        return entries_.size();
    }

private:
    struct Entry {
        Answer answer;
        std::chrono::steady_clock::time_point until;
        bool isAsking = true;
    };

    Answer store(std::string const& key, std::function<Found()> const& ask) {
        Found found;
        try {
            found = ask();
        } catch (...) {
            std::lock_guard const scope(lock_);
            entries_.erase(key);
            answered_.notify_all();
            throw;
        }
        std::lock_guard const scope(lock_);
        entries_[key] = Entry{found.answer, clock_() + found.holds, false};
        makeRoom();
        answered_.notify_all();
        return found.answer;
    }

    /// Requires the lock. Keys that are being asked for stay.
    void makeRoom() {
        while (entries_.size() > mostKeys_) {
            auto const first =
                std::min_element(entries_.begin(), entries_.end(), [](auto const& a, auto const& b) {
                    bool const isAsking = a.second.isAsking;
                    return isAsking != b.second.isAsking ? b.second.isAsking
                                                         : a.second.until < b.second.until;
                });
            if (first->second.isAsking) {
                return;
            }
            entries_.erase(first);
        }
    }

    std::size_t const mostKeys_;
    RemoteClock const clock_;
    mutable std::mutex lock_;
    std::condition_variable answered_;
    std::map<std::string, Entry> entries_;
};
