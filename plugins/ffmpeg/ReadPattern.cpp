#include "plugins/ffmpeg/ReadPattern.h"

#include <algorithm>
#include <cstdlib>

namespace playfile_ffmpeg {
namespace {

constexpr std::uint64_t mostBatchFrames = 16;
/// A run onward begins with two frames and doubles until it has the most that a batch may have.
constexpr std::uint32_t mostDoublings = 4;
/// Pictures of a batch take so much at most: memory that is touched for the first time costs play onward more
/// than further batches do. But a decoder that has two to make wastes less time between batches.
constexpr std::uint64_t mostBatchBytes = std::uint64_t{10} << 20;
constexpr std::uint64_t fewestFramesOfLargePictures = 2;
/// A batch takes this part of all pictures at most: where many files play, their decoders fill the processors
/// together, and what each decodes ahead of need is lost when it stops.
constexpr std::uint64_t batchesOfTheWhole = 12;
constexpr std::uint64_t fewestStored = 2;
/// A frame at most this far from the one before is near.
constexpr std::int64_t nearFrames = 16;
/// Frames to each side that are kept for whoever looks about.
constexpr std::int64_t mostFramesAround = 48;
/// Of the pictures kept for who goes backward, this part lies behind, for a turn; at most so many.
constexpr std::int64_t turnPart = 12;
constexpr std::int64_t mostTurnFrames = 8;
/// Who has gone onward by so many steps isn't looking about. What is kept until then stays a decoder's
/// memory, so that eight clips that begin to play at once would take much.
constexpr std::uint32_t stepsOfAPlay = 3;

std::uint32_t orZero(std::int64_t frame) {
    return static_cast<std::uint32_t>(std::max<std::int64_t>(frame, 0));
}

Keep keepAround(std::uint32_t frame, std::int64_t before, std::int64_t behind) {
    std::uint32_t const first = orZero(std::int64_t{frame} - before);
    return {first, first, orZero(std::int64_t{frame} + behind)};
}

}  // namespace

PictureRoom PictureRoom::of(std::uint64_t bytes, std::uint64_t pictureBytes) {
    std::uint64_t const whole = bytes / std::max<std::uint64_t>(pictureBytes, 1);
    std::uint64_t const modest =
        std::max(mostBatchBytes / std::max<std::uint64_t>(pictureBytes, 1), fewestFramesOfLargePictures);
    std::uint64_t const batch =
        std::clamp<std::uint64_t>(std::min(whole / batchesOfTheWhole, modest), 1, mostBatchFrames);
    std::uint64_t const store = std::max(whole - std::min(whole, 2 * batch), fewestStored);
    return {static_cast<std::uint32_t>(batch),
            static_cast<std::uint32_t>(std::min<std::uint64_t>(store, INT32_MAX))};
}

void ReadPattern::note(std::uint32_t frame) {
    std::int64_t const step = last_ < 0 ? nearFrames + 1 : std::int64_t{frame} - last_;
    last_ = frame;
    if (step == 0) {
        return;
    }
    eDirection const before = direction_;
    direction_ = step == 1                      ? eDirection::onward
                 : step == -1                   ? eDirection::backward
                 : std::abs(step) <= nearFrames ? eDirection::around
                                                : eDirection::jump;
    steps_ = direction_ == before ? steps_ + 1 : 1;
}

FrameRun ReadPattern::run(PictureRoom const& room, std::uint32_t frameCount) const {
    std::uint32_t const frame = orZero(last_);
    switch (direction_) {
        case eDirection::onward: {
            std::uint32_t const grown = 1U << std::min(steps_, mostDoublings);
            std::uint32_t const left = frameCount - std::min(frame, frameCount);
            return {frame, frame + std::clamp<std::uint32_t>(std::min(grown, left), 1, room.batch)};
        }
        case eDirection::backward:
            return {orZero(std::int64_t{frame} + 1 - room.batch), frame + 1};
        default:
            return {frame, frame + 1};
    }
}

Keep ReadPattern::keep(std::uint32_t stored, PictureRoom const& room) const {
    std::int64_t const others = std::int64_t{room.store} - 1;
    if (direction_ == eDirection::backward) {
        std::int64_t const behind = std::min(others / turnPart, mostTurnFrames);
        return keepAround(stored, others - behind, behind);
    }
    if (direction_ == eDirection::jump) {
        return {stored, orZero(stored - others), UINT32_MAX};
    }
    if (direction_ == eDirection::onward && steps_ >= stepsOfAPlay) {
        return {stored, stored, UINT32_MAX};
    }
    std::int64_t const reach = std::min(others / 2, mostFramesAround);
    return keepAround(stored, reach, reach);
}

}  // namespace playfile_ffmpeg
