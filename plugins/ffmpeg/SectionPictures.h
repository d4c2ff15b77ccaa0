#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ole/Ox/OxString.h"
#include "plugins/ffmpeg/FrameFetcher.h"
#include "plugins/ffmpeg/FrameRateMap.h"
#include "plugins/ffmpeg/VideoEncoder.h"

namespace playfile_ffmpeg {

/// The frames of a file as the library counts them, read for a copy of some of them.
///
/// Threads  One at a time.
class SectionSource {
public:
    /// Empty with the reason in `error`. Blocks on the file.
    static std::unique_ptr<SectionSource> open(LightweightString<wchar_t> const& name, std::string& error);

    [[nodiscard]] FrameFetcher& file() const { return *file_; }
    [[nodiscard]] std::uint32_t frameCount() const;
    /// The stored frame that is shown at a frame.
    [[nodiscard]] std::uint32_t storedFrame(std::uint32_t frame) const;

private:
    explicit SectionSource(std::unique_ptr<FrameFetcher> file);

    std::unique_ptr<FrameFetcher> const file_;
    std::unique_ptr<FrameRateMap> const map_;
};

/// Brings the frames of a section, one by one, as packets of a new file from which each decodes to the very
/// pixels of the source.
///
/// Threads  One at a time.
/// Units    Packets' times count frames of the section.
class SectionPictures {
public:
    enum class eWay {
        copied,  ///< Packets as they are, of codings in which each stands for itself.
        coded    ///< Decoded and coded anew by a coding that loses nothing.
    };

    /// Whether the source's own packets can be taken.
    [[nodiscard]] static bool canCopy(SectionSource& source);
    /// Empty with the reason in `error`. @param first  the section's first frame
    [[nodiscard]] static std::unique_ptr<SectionPictures> make(SectionSource& source, std::uint32_t first,
                                                               eWay way, std::string& error);
    virtual ~SectionPictures() = default;

    /// What a container needs to know.
    [[nodiscard]] virtual AvPtr<AVCodecParameters> parameters() const = 0;
    /// Appends the packets that are ready once the next frame is taken; false with the reason in `error`.
    [[nodiscard]] virtual bool takeNext(Packets& packets, std::string& error) = 0;
    /// Appends those that were held back.
    [[nodiscard]] virtual bool finish(Packets& packets, std::string& error) = 0;
};

}  // namespace playfile_ffmpeg
