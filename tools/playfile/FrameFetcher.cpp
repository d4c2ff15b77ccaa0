#include "tools/playfile/FrameFetcher.h"

#include <algorithm>

#include "toolkit/image/Format.h"

namespace cli {
namespace {

/// Bytes that the pictures of frames asked for ahead may take.
constexpr std::uint64_t aheadBytes = 64U << 20;
/// A generous guess at the bytes of a pixel, whatever the format.
constexpr std::uint64_t bytesPerPixel = 4;
constexpr std::uint64_t leastAhead = 2;
constexpr std::uint64_t mostAhead = 16;
constexpr std::uint16_t rgbBitsPerComponent = 8;
constexpr std::uint16_t rgbBitsPerPixel = 24;

std::size_t aheadFor(DecodeFormat const& format) {
    std::uint64_t const pictureBytes = std::uint64_t(format.getWidth()) * format.getHeight() * bytesPerPixel;
    return std::clamp(aheadBytes / std::max<std::uint64_t>(pictureBytes, 1), leastAhead, mostAhead);
}

}  // namespace

FrameFetcher::FrameFetcher(Cookie const& cookie, PlayFileMetadataRep const& metadata,
                           DecodeFormat const& format, unsigned threads)
    : cookie_(cookie),
      format_(format),
      work_(metadata.frameGrouped ? 1 : threads, metadata.frameGrouped ? 0 : aheadFor(format)) {}

void FrameFetcher::run(std::vector<std::uint32_t> const& frames, Work const& work, Tell const& tell) {
    auto const ask = [&](std::size_t position) {
        return std::make_unique<FrameRequest>(cookie_, frames[position], format_);
    };
    auto const finish = [&](Ticket request, unsigned thread) {
        FrameOutcome outcome;
        outcome.frame = request->frame();
        outcome.thread = thread;
        Ox::Image::Surface surface;
        outcome.isGood = finishRequest(request, surface);
        if (outcome.isGood) {
            outcome.text = work(outcome.frame, surface);
        }
        return outcome;
    };
    work_.run(frames.size(), {ask, finish, tell});
}

DecodeFormat nativeFormat(PlayFileMetadataRep const& metadata) {
    DecodeFormat format = DecodeFormat::getDefault();
    format.setWidth(metadata.image.getWidth());
    format.setHeight(metadata.image.getHeight());
    return format;
}

DecodeFormat rgbFormat(PlayFileMetadataRep const& metadata, std::uint32_t width, std::uint32_t height) {
    DecodeFormat format = nativeFormat(metadata);
    if (width != 0 && height != 0) {
        format.setWidth(width);
        format.setHeight(height);
    }
    format.setDataFormat(Ox::Image::rgb24);
    format.setBitsPerComponent(rgbBitsPerComponent);
    format.setBitsPerPixel(rgbBitsPerPixel);
    return format;
}

}  // namespace cli
