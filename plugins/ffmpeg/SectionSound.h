#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "files/FileReadInstance.h"
#include "plugins/ffmpeg/VideoEncoder.h"

namespace playfile_ffmpeg {

/// Which samples of which channels of one stream.
///
/// Units  Samples of every channel; the end doesn't belong to it.
struct SoundPart {
    std::uint32_t stream = 0;
    std::uint32_t firstChannel = 0;  ///< Inside the stream, from 0.
    std::uint32_t channelCount = 0;
    std::uint32_t fileChannel = 0;  ///< The first one's number over the whole file, from 0.
    std::uint64_t first = 0;
    std::uint64_t end = 0;
};

/// Brings the samples of a section as packets of uncompressed sound. They are read through the file's queue,
/// as anybody's are, whichever reader has it open.
///
/// Threads  One at a time.
/// Units    Packets' times count samples of the section.
class SectionSound {
public:
    /// @param file  open for its sound; the part lies inside it
    SectionSound(Ox::Ptr<FileReadInstance> const& file, SoundPart const& part);

    /// False for samples of an unknown form.
    [[nodiscard]] bool canWrite() const;
    [[nodiscard]] AvPtr<AVCodecParameters> parameters() const;
    [[nodiscard]] AVRational timeBase() const;
    [[nodiscard]] std::uint64_t sampleCount() const { return part_.end - part_.first; }
    /// Samples that were taken.
    [[nodiscard]] std::uint64_t taken() const { return taken_; }
    /// True once all are taken, or the stream ends before the section does.
    [[nodiscard]] bool isOver() const { return hasEnded_ || taken_ == sampleCount(); }

    /// Appends a packet of the next samples; false with the reason in `error`. Requires that it isn't over.
    [[nodiscard]] bool takeNext(Packets& packets, std::string& error);

private:
    [[nodiscard]] std::uint32_t nextCount() const;
    [[nodiscard]] bool readChannels(std::uint32_t count, std::string& error);
    [[nodiscard]] AvPtr<AVPacket> interleaved() const;

    Ox::Ptr<FileReadInstance> file_;
    SoundPart const part_;
    Aud::Metadata const format_;
    std::uint64_t taken_ = 0;
    bool hasEnded_ = false;
    std::vector<std::vector<std::uint8_t>> channels_;  ///< Of the block that was read last, all as long.
};

}  // namespace playfile_ffmpeg
