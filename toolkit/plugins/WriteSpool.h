#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "ole/os/Errors.h"

/// What is on its way to a file, in its order, and the thread that writes it.
///
/// Whoever hands something over that exceeds a bound of bytes waits until half of them are written, so that little
/// is lost if the process dies, and memory stays flat if the disk is slow. The thread takes what waits in runs; what
/// is in a run counts as waiting until the whole run is written and settled. After the first failure nothing more is
/// written, and everything gets that answer.
///
/// Ownership  It holds what isn't written yet.
/// Threads    One at a time hands over. What it is handed is called on its own thread.
/// Lock order `lock_`; nothing is called under it.
class WriteSpool {
public:
    /// Writes one thing, which it holds; 1, or what went wrong.
    using Write = std::function<OxResult()>;
    /// Told of the end of one thing, on the spool's thread; may be empty.
    using Told = std::function<void(bool isWritten)>;

    /// @param enoughBytes  with so many the thread begins at once, with fewer after a twentieth of a second;
    ///                     a run ends with the thing that makes it so long
    /// @param settle       makes the file count what a run has put there, called after each run, even one that
    ///                     failed; may be empty
    WriteSpool(std::uint64_t mostBytesWaiting, std::uint64_t enoughBytes, Write settle = {});
    /// Waits until all is written.
    ~WriteSpool();
    WriteSpool(WriteSpool const&) = delete;
    WriteSpool& operator=(WriteSpool const&) = delete;

    /// 1, or the failure of something earlier; then nothing is taken.
    ///
    /// @param byteCount  what it holds of memory
    OxResult put(std::uint64_t byteCount, Write write, Told told);
    /// How many things are left to write.
    [[nodiscard]] std::uint64_t backlog() const;
    /// Waits until all is written, or can't be: 1, or the first failure.
    [[nodiscard]] OxResult waitUntilWritten();

private:
    struct Entry {
        std::uint64_t byteCount;
        Write write;
        Told told;
    };

    void work();
    void rest(std::unique_lock<std::mutex>& scope);
    [[nodiscard]] std::uint64_t takeRun();
    [[nodiscard]] OxResult writeRun(OxResult before);

    std::uint64_t const mostBytesWaiting_;
    std::uint64_t const enoughBytes_;
    Write const settle_;
    std::vector<Entry> run_;  ///< Own thread: what is being written.
    mutable std::mutex lock_;
    std::condition_variable hasWork_;
    std::condition_variable hasRoom_;
    std::deque<Entry> entries_;       ///< Under the lock: what no run has taken.
    std::size_t runCount_ = 0;        ///< Under the lock: how many things the run has.
    std::uint64_t bytesWaiting_ = 0;  ///< Under the lock: those of the run among them.
    OxResult result_ = oxSuccess;     ///< Under the lock.
    bool isEnding_ = false;           ///< Under the lock.
    bool isWaitedFor_ = false;        ///< Under the lock: somebody waits until all is written.
    bool isResting_ = false;          ///< Under the lock: nothing is there for the thread to do.
    std::thread thread_;
};
