#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "tools/playfile/Interrupt.h"

namespace cli {

/// Asks for things strictly in order, some ahead of need, waits for them on several threads, and tells what
/// came of them in order again.
///
/// So a file's queue always has work and a file is read onward where the list goes onward, while the threads
/// work on what has come side by side. What is done but can't be told yet is bounded.
///
/// Threads  `run` blocks; the functions are called on threads of its own: `ask` and `tell` on one at a time.
/// Errors   The first exception of a function ends the work and leaves `run`.
template <class Ticket, class Outcome>
class OrderedWork {
public:
    struct Functions {
        std::function<Ticket(std::size_t position)> ask;
        /// Waits for what was asked for. @param thread  the thread that serves it, from 0
        std::function<Outcome(Ticket ticket, unsigned thread)> finish;
        std::function<void(Outcome const& outcome)> tell;
    };

    /// @param threads  from 1
    /// @param ahead    things asked for that wait while others are being worked on
    OrderedWork(unsigned threads, std::size_t ahead)
        : threads_(threads), ahead_(ahead), mostUntold_(threads + 2 * ahead + leastUntold) {}

    /// Does `count` things.
    void run(std::size_t count, Functions const& functions) {
        Job const job{count, functions};
        nextToAsk_ = 0;
        nextToTell_ = 0;
        hasFailed_ = false;
        {
            std::vector<std::jthread> servers;
            for (unsigned thread = 0; thread < threads_; ++thread) {
                servers.emplace_back([this, &job, thread] { serve(job, thread); });
            }
        }
        asked_.clear();
        untold_.clear();
        if (std::exception_ptr const error = std::exchange(error_, nullptr)) {
            isStopped_ = false;
            std::rethrow_exception(error);
        }
    }

private:
    static constexpr std::size_t leastUntold = 16;

    struct Asked {
        std::size_t position = 0;
        Ticket ticket;
    };
    struct Job {
        std::size_t count;
        Functions const& functions;
    };

    void serve(Job const& job, unsigned thread) noexcept {
        try {
            Asked asked;
            while (take(job, asked)) {
                Outcome outcome = job.functions.finish(std::move(asked.ticket), thread);
                tellInOrder(job, asked.position, std::move(outcome));
            }
        } catch (...) {
            fail(std::current_exception());
        }
    }

    /// False if nothing is left.
    bool take(Job const& job, Asked& asked) {
        std::lock_guard const scope(askMutex_);
        checkForInterrupt();
        if (isStopped_) {
            return false;
        }
        while (nextToAsk_ < job.count && asked_.size() <= ahead_) {
            asked_.push_back({nextToAsk_, job.functions.ask(nextToAsk_)});
            ++nextToAsk_;
        }
        if (asked_.empty()) {
            return false;
        }
        asked = std::move(asked_.front());
        asked_.pop_front();
        return true;
    }

    /// Whoever is far before the one that is to be told next waits for it: that one is being worked on.
    void tellInOrder(Job const& job, std::size_t position, Outcome outcome) {
        std::unique_lock scope(tellMutex_);
        hasTold_.wait(scope, [&] { return position < nextToTell_ + mostUntold_ || hasFailed_; });
        untold_.emplace(position, std::move(outcome));
        while (!untold_.empty() && untold_.begin()->first == nextToTell_) {
            Outcome const next = std::move(untold_.begin()->second);
            untold_.erase(untold_.begin());
            ++nextToTell_;
            hasTold_.notify_all();
            job.functions.tell(next);
        }
    }

    void fail(std::exception_ptr const& error) {
        {
            std::lock_guard const scope(askMutex_);
            isStopped_ = true;
            if (!error_) {
                error_ = error;
            }
        }
        std::lock_guard const scope(tellMutex_);
        hasFailed_ = true;
        hasTold_.notify_all();
    }

    unsigned const threads_;
    std::size_t const ahead_;
    std::size_t const mostUntold_;

    /// Guards what is asked for; held while something is asked for, so that the order is the list's.
    std::mutex askMutex_;
    std::deque<Asked> asked_;
    std::size_t nextToAsk_ = 0;
    bool isStopped_ = false;
    std::exception_ptr error_;

    /// Guards what is told; held while `tell` runs.
    std::mutex tellMutex_;
    std::condition_variable hasTold_;
    std::map<std::size_t, Outcome> untold_;
    std::size_t nextToTell_ = 0;
    bool hasFailed_ = false;
};

}  // namespace cli
