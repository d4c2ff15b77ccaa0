#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace playfile_ffmpeg {

/// What holds threads and memory for its next use, and does without at a price.
class KeptDecoder {
public:
    virtual ~KeptDecoder() = default;

    /// Gives threads and memory up; false, with nothing changed, if it is at work. Doesn't wait.
    virtual bool tryClose() = 0;
};

/// Sees that only the decoders that were used last stay open.
///
/// Whoever takes up work says so, and when it has ended; in both cases the ones that were used the longest
/// ago are closed. One that is at work then stays until the next time.
///
/// Ownership    None: a decoder that goes is forgotten.
/// Threads      Any.
/// Lock order   `lock_` is held while nothing is closed. The caller may hold the lock of its own decoder.
class DecoderKeeper {
public:
    explicit DecoderKeeper(size_t mostOpen) : mostOpen_(mostOpen) {}

    /// That of the process, which keeps as many as the setting `streamingDecoders` says.
    static DecoderKeeper& shared();

    /// `decoder` is open and the one used last. It isn't closed during this call if it is at work.
    void use(std::shared_ptr<KeptDecoder> const& decoder);

    /// Closes what is too much.
    void trim();

    size_t openCount() const;

private:
    std::vector<std::shared_ptr<KeptDecoder>> takeSurplus();
    void forgetGone();

    size_t const mostOpen_;
    mutable std::mutex lock_;
    std::list<std::weak_ptr<KeptDecoder>> kept_;  ///< The one used last in front.
};

}  // namespace playfile_ffmpeg
