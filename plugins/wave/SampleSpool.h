#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "ole/Ox/OxMemHolder.h"
#include "ole/os/Errors.h"

namespace playfile_wave {

/// Buffers on their way to a file, and the thread that writes them.
///
/// Whoever hands over a buffer waits until no more than a bound of bytes is left to write, so that little is
/// lost if the process dies, and memory stays flat if the disk is slow. After the first failure nothing more is
/// written, and every buffer gets that answer.
///
/// Ownership  It holds the buffers that aren't written yet.
/// Threads    One at a time hands over. `write` is called on its own thread.
/// Lock order `lock_`; nothing is called under it.
class SampleSpool {
public:
    /// Writes a buffer; 1, or what went wrong.
    using Write = std::function<OxResult(iMemHolder const& buffer)>;
    /// Told of the end of a buffer, on the spool's thread; may be empty.
    using Told = std::function<void(bool isWritten)>;

    SampleSpool(std::uint64_t mostBytesWaiting, Write write);
    /// Waits until all is written.
    ~SampleSpool();
    SampleSpool(SampleSpool const&) = delete;
    SampleSpool& operator=(SampleSpool const&) = delete;

    /// 1, or the failure of an earlier buffer; then nothing is taken.
    OxResult put(Ox::Ptr<iMemHolder> const& buffer, Told told);
    /// Buffers that are left to write.
    [[nodiscard]] std::uint64_t backlog() const;
    /// The first failure; 1 for none.
    [[nodiscard]] OxResult result() const;

private:
    struct Entry {
        Ox::Ptr<iMemHolder> buffer;
        Told told;
    };

    void work();
    void finish(Entry& entry, OxResult result);

    std::uint64_t const mostBytesWaiting_;
    Write const write_;
    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::deque<Entry> entries_;       ///< Under the lock; the first one is being written.
    std::uint64_t bytesWaiting_ = 0;  ///< Under the lock.
    OxResult result_ = oxSuccess;     ///< Under the lock.
    bool isEnding_ = false;           ///< Under the lock.
    std::thread thread_;
};

}  // namespace playfile_wave
