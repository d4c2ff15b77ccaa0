#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>

#include "ole/os/BasicThread.h"

namespace playfile_ffmpeg {

/// Feeds the decoder of one stream before its packets are asked for, on a thread of its own, so that
/// decoding goes on while those who asked digest what they got.
///
/// Threads      `goOn` and `halt`: one at a time, never the thread itself. Between a `halt` and the next
///              `goOn` nothing is fed, and what feeding touches belongs to the caller.
/// Units        Packets, numbered in the order of the stream.
class SoundAhead final : public BasicThread {
public:
    /// @param feedNext  feeds one packet, on the thread; false if that isn't possible
    explicit SoundAhead(std::function<bool()> feedNext);
    ~SoundAhead() override;

    /// Returns when all packets before `needed` have been fed; those before `wanted` follow, while the
    /// caller goes on.
    ///
    /// @param given  packets that have been fed before; looked at after a halt only
    /// @return false, with feeding at a halt, if a packet couldn't be fed or the system gave no thread
    bool goOn(uint32_t given, uint32_t needed, uint32_t wanted);

    /// Lets the few packets that are being fed end, and feeds no more.
    void halt();

protected:
    void threadFn() override;

private:
    void feedUntilTold(std::unique_lock<std::mutex>& lock);

    std::function<bool()> const feedNext_;
    std::mutex lock_;
    std::condition_variable isWork_;
    std::condition_variable isProgress_;
    // Under the lock:
    uint32_t given_ = 0;
    uint32_t needed_ = 0;
    uint32_t wanted_ = 0;
    bool isFeeding_ = false;
    bool isHalted_ = true;
    bool isEnding_ = false;
    bool const hasThread_;
};

}  // namespace playfile_ffmpeg
