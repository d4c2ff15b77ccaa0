#include "tools/playfile/ContactSheet.h"

#include <algorithm>
#include <cmath>
#include <mutex>

#include "tools/playfile/DigitPainter.h"
#include "tools/playfile/FrameFetcher.h"
#include "tools/playfile/PictureSize.h"
#include "tools/playfile/Progress.h"
#include "tools/playfile/Timeline.h"

namespace cli {
namespace {

constexpr std::uint32_t mostPictures = 20;
constexpr std::uint32_t mostColumns = 5;
constexpr unsigned threads = 2;
constexpr PictureSize largestPicture{256, 256};
/// Pixels around every picture.
constexpr std::uint32_t margin = 8;

/// Where the pictures lie on the sheet.
class Grid {
public:
    Grid(PictureSize cell, std::size_t count)
        : cell_(cell),
          columns_(std::min<std::uint32_t>(mostColumns, static_cast<std::uint32_t>(count))),
          rows_(static_cast<std::uint32_t>((count + columns_ - 1) / columns_)) {}

    [[nodiscard]] Picture emptySheet() const {
        return {margin + columns_ * columnWidth(), margin + rows_ * rowHeight()};
    }
    [[nodiscard]] std::uint32_t left(std::size_t index) const {
        return margin + static_cast<std::uint32_t>(index % columns_) * columnWidth();
    }
    [[nodiscard]] std::uint32_t top(std::size_t index) const {
        return margin + static_cast<std::uint32_t>(index / columns_) * rowHeight();
    }
    [[nodiscard]] std::uint32_t numberTop(std::size_t index) const {
        return top(index) + cell_.height + margin / 2;
    }

private:
    [[nodiscard]] std::uint32_t columnWidth() const { return cell_.width + margin; }
    [[nodiscard]] std::uint32_t rowHeight() const { return cell_.height + 2 * margin + digitHeight; }

    PictureSize cell_;
    std::uint32_t columns_;
    std::uint32_t rows_;
};

}  // namespace

std::vector<std::uint32_t> spreadFrames(std::uint32_t frameCount, std::uint32_t most) {
    std::uint32_t const count = std::min(frameCount, most);
    std::vector<std::uint32_t> frames;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint64_t const last = frameCount - 1;
        frames.push_back(count == 1 ? 0 : static_cast<std::uint32_t>(last * i / (count - 1)));
    }
    return frames;
}

ContactSheet makeContactSheet(Clip const& clip, FileReadInstance const& file) {
    PlayFileMetadataRep const& metadata = *file.metadata;
    ContactSheet sheet;
    sheet.frames = spreadFrames(Timeline(metadata).frameCount(), mostPictures);
    PictureSize const cell = PictureSize::within(largestPicture, metadata);
    PictureSize const stored = cell.stored(metadata.orientation);
    Grid const grid(cell, sheet.frames.size());
    sheet.picture = grid.emptySheet();
    Progress progress("contact sheet", sheet.frames.size(), false);
    FrameFetcher fetcher(clip.videoCookie(), metadata, rgbFormat(metadata, stored.width, stored.height),
                         threads);
    std::mutex pasting;
    auto const paste = [&](std::uint32_t frame, Ox::Image::Surface const& surface) {
        auto const place = std::find(sheet.frames.begin(), sheet.frames.end(), frame);
        auto const index = static_cast<std::size_t>(place - sheet.frames.begin());
        Picture const picture =
            Picture::of(surface).upright(metadata.orientation).scaled(cell.width, cell.height);
        std::lock_guard const scope(pasting);
        sheet.picture.paste(picture, grid.left(index), grid.top(index));
        paintNumber(sheet.picture, frame, grid.left(index), grid.numberTop(index));
        return std::string();
    };
    fetcher.run(sheet.frames, paste, [&](FrameOutcome const& outcome) {
        if (!outcome.isGood) {
            sheet.failed.push_back(outcome.frame);
        }
        progress.step();
    });
    return sheet;
}

}  // namespace cli
