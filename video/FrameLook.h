#pragma once

#include <cstdint>

#include "files/FileReadInstance.h"
#include "video/VideoReadRequest.h"

namespace Ox {

/// Tells in one look through many requests which of them will yield a frame.
///
/// A look is short, and most requests are of one file: how that groups its frames is asked once. It must be asked at
/// each look, as a reader learns more of a file while it reads.
class FrameLook {
public:
    /// @param file  the asking request's, which says whether a read yields more than its own frame
    FrameLook(std::uint32_t frame, FileReadInstance const& file)
        : frame_(frame), isStreaming_(file.metadata->readStreaming()) {}

    [[nodiscard]] std::uint32_t frame() const { return frame_; }

    /// True if a request of `file` without a unit yields its own frame only.
    [[nodiscard]] bool isAboutSingleFrames(FileReadInstance const& file) {
        return isStreaming_ || framesPerGroup(file) == 0;
    }

    /// In a streamed file a read yields its own frame only, otherwise all of its unit or group.
    [[nodiscard]] bool isYieldedBy(VideoReadRequest const& request) {
        IndexInfoRep const* const unit = request.indexInfo.get();
        if (unit && !isStreaming_) {
            return frame_ >= unit->unitOffset + unit->unitStart && frame_ <= unit->unitEnd;
        }
        if (isAboutSingleFrames(*request.file)) {
            return request.frame == frame_;
        }
        std::uint32_t const first = request.frame - request.frame % framesPerGroup_;
        return frame_ >= first && frame_ <= first + framesPerGroup_ - 1;
    }

private:
    /// 0 if the file doesn't group its frames.
    [[nodiscard]] std::uint32_t framesPerGroup(FileReadInstance const& file) {
        if (&file != file_) {
            file_ = &file;
            framesPerGroup_ = file.metadata->frameGrouped ? file.metadata->framesPerGroup : 0;
        }
        return framesPerGroup_;
    }

    std::uint32_t const frame_;
    bool const isStreaming_;
    FileReadInstance const* file_ = nullptr;
    std::uint32_t framesPerGroup_ = 0;
};

}  // namespace Ox
