#pragma once

#include <cstddef>
#include <cstdint>

namespace playfile_ffmpeg {

/// How frames are asked for.
enum class eDirection : std::uint32_t {
    jump,      ///< far from the frame before, which says nothing about the next
    onward,    ///< one after the other
    backward,  ///< one before the other
    around     ///< to either side of a place
};

/// Pictures that a reader may hold.
struct PictureRoom {
    std::uint32_t batch = 1;  ///< In each of the two batches.
    std::uint32_t store = 2;

    /// Shares out `bytes` of memory for pictures of a size. Never less than a picture a batch and two in
    /// the store.
    static PictureRoom of(std::uint64_t bytes, std::uint64_t pictureBytes);
};

/// Frames that are wanted beside one that is fetched.
struct Keep {
    /// Nobody asks for a frame before this one, so that it needn't be decoded if no other needs it.
    std::uint32_t wantedFrom = 0;
    /// Pictures that come out on the way are stored if they are among these, and others that are stored go.
    std::uint32_t first = 0;
    std::uint32_t last = UINT32_MAX;
};

/// A run of frames, the last one not included.
struct FrameRun {
    std::uint32_t first = 0;
    std::uint32_t end = 0;
};

/// Learns from the frames that are asked for which will be asked for next.
///
/// Threads  One at a time.
class ReadPattern {
public:
    /// Every frame that is asked for is noted.
    void note(std::uint32_t frame);

    /// The frame that was noted last. Requires one.
    [[nodiscard]] std::uint32_t last() const { return static_cast<std::uint32_t>(last_); }
    /// How it was come to.
    [[nodiscard]] eDirection direction() const { return direction_; }

    /// The frames that are decoded along with the one that was noted last, of a file of `frameCount`. A run
    /// onward grows as more and more frames are asked for one after the other; a run backward ends with
    /// the frame; all others have that one only.
    [[nodiscard]] FrameRun run(PictureRoom const& room, std::uint32_t frameCount) const;

    /// What is kept while frame `stored` of the file is fetched, one of the run.
    [[nodiscard]] Keep keep(std::uint32_t stored, PictureRoom const& room) const;

private:
    std::int64_t last_ = -1;
    eDirection direction_ = eDirection::jump;
    std::uint32_t steps_ = 0;  ///< In a row, in a direction onward or backward.
};

}  // namespace playfile_ffmpeg
