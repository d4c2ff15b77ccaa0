#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ole/Ox/OxString.h"
#include "ole/os/Errors.h"
#include "plugins/ffmpeg/Muxer.h"
#include "plugins/ffmpeg/SectionPictures.h"
#include "plugins/ffmpeg/SectionSound.h"

namespace playfile_ffmpeg {

/// Makes a new file of a section of another one.
///
/// The file gets its name when it is whole. Its pictures have been compared with the source's at both ends;
/// where packets that were taken as they are don't give the same, they are coded anew.
///
/// Threads    One at a time.
/// Errors     After a failure or an interruption no file is left, and what was there before is as it was.
class SectionCopy {
public:
    struct Plan {
        LightweightString<wchar_t> source;
        LightweightString<wchar_t> target;
        /// Frames as the library counts them, the end not included; `first` is `end` for no picture.
        std::uint32_t firstFrame = 0;
        std::uint32_t endFrame = 0;
        /// Open for its sound; empty for none.
        Ox::Ptr<FileReadInstance> soundFile;
        std::vector<SoundPart> sound;
    };
    /// Told how much is done, from 0 to 1; false to stop.
    using Progress = std::function<bool(double fraction)>;

    SectionCopy(Plan plan, Progress progress);
    ~SectionCopy();
    SectionCopy(SectionCopy const&) = delete;
    SectionCopy& operator=(SectionCopy const&) = delete;

    /// Once. 1; 3 if it was interrupted; else what went wrong, with the reason in `error`. Blocks as long as
    /// it takes.
    [[nodiscard]] OxResult run(std::string& error);

    /// FFmpeg's name of the container for a file of that name, by its extension; empty for others.
    [[nodiscard]] static std::string containerFor(LightweightString<wchar_t> const& target);

private:
    struct Sound {
        SectionSound section;
        int stream = 0;
    };

    [[nodiscard]] OxResult make(SectionPictures::eWay way, std::string& error);
    [[nodiscard]] bool addStreams(SectionPictures::eWay way, std::string& error);
    void describePictures() const;
    [[nodiscard]] OxResult writeAll(std::string& error);
    [[nodiscard]] bool writeFrame(std::uint32_t frame, std::string& error);
    [[nodiscard]] bool finishPictures(std::string& error);
    [[nodiscard]] OxResult writeRestOfSound(std::string& error);
    [[nodiscard]] bool writeSound(Sound& sound, std::string& error);
    [[nodiscard]] bool writePackets(Packets& packets, int stream, AVRational timeBase, std::string& error);
    [[nodiscard]] bool tellProgress(std::uint64_t done, std::uint64_t total) const;
    [[nodiscard]] bool isLikeSource(std::string& error) const;
    [[nodiscard]] bool isPartialThere(std::string& error) const;
    [[nodiscard]] OxResult giveName(std::string& error);
    [[nodiscard]] OxResult failure(std::string& error) const;
    [[nodiscard]] std::uint32_t frameCount() const { return plan_.endFrame - plan_.firstFrame; }
    /// How long a frame lasts, in seconds.
    [[nodiscard]] AVRational frameTime() const;

    Plan const plan_;
    Progress const progress_;
    LightweightString<wchar_t> const partial_;
    std::unique_ptr<SectionSource> source_;
    std::unique_ptr<Muxer> muxer_;
    std::unique_ptr<SectionPictures> pictures_;
    int pictureStream_ = 0;
    std::vector<Sound> sounds_;
    bool hasName_ = false;
};

}  // namespace playfile_ffmpeg
