#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// Ends an operation of libavformat that doesn't end by itself.
///
/// Threads      arm and isOver: the thread that works on the container.
class Deadline {
public:
    static constexpr std::chrono::seconds patience{60};

    void arm() { end_ = std::chrono::steady_clock::now() + patience; }
    bool isOver() const { return std::chrono::steady_clock::now() > end_; }
    AVIOInterruptCB callback();

private:
    std::chrono::steady_clock::time_point end_{};
};

/// An opened container with its chosen video stream.
///
/// The video stream is the first one that isn't a cover picture. All other streams are discarded while
/// packets are read. MPEG-4 as AVI files bear it has packets of two pictures, and a packet without one
/// to make up for it; here the second picture comes in place of that packet.
///
/// Threads      One at a time.
class OpenContainer {
public:
    /// False with the reason in `error`. May block on the file.
    [[nodiscard]] bool open(std::string const& path, std::string& error);

    /// Opens a file that holds sound and no video, for its description; false for any other, too.
    [[nodiscard]] bool openForSound(std::string const& path, std::string& error);

    AVFormatContext& format() const { return *format_; }
    AVStream& video() const { return *format_->streams[videoIndex_]; }
    /// The first stream of sound of a file that was opened for it.
    AVStream& sound() const { return *format_->streams[soundIndex_]; }

    /// What a decoder of the video stream needs to know.
    AVCodecParameters const& videoParameters() const;

    /// Reads the next packet of the video stream; a code of FFmpeg below 0 at the end.
    int readVideoPacket(AVPacket& packet);

    /// Goes to another place as `av_seek_frame` does; false if it can't.
    [[nodiscard]] bool seek(int stream, int64_t timestamp, int flags);

    /// True if a packet that was read since the opening isn't the one that lies in the file.
    bool hasTakenApart() const { return hasTakenApart_; }

    bool isFormat(char const* name) const;
    bool isStill() const;

    /// True if the container keeps a time of showing for each frame.
    bool keepsExactTimes() const { return isFormat("mov") || isFormat("matroska") || isFormat("mxf"); }

    /// A stream without container: packets follow each other without anything between them.
    bool isRawStream() const;

    /// Opens the same file again, to read from its beginning.
    [[nodiscard]] bool reopen(std::string& error);

private:
    bool openInput(std::string& error);
    bool statesWhatIsNeeded() const;
    bool probeStreams(std::string& error);
    bool chooseVideo();
    bool chooseSound();
    void discardOthers();
    [[nodiscard]] bool makeUnpacker(std::string& error);
    int readStoredPacket(AVPacket& packet);

    Deadline deadline_;
    std::string path_;
    AvPtr<AVFormatContext> format_;
    unsigned videoIndex_ = 0;
    unsigned soundIndex_ = 0;
    AvPtr<AVBSFContext> unpacker_;  ///< Empty where no packet holds two pictures.
    int storedByteCount_ = 0;       ///< Of the packet that the unpacker took last.
    bool hasTakenApart_ = false;
};

}  // namespace playfile_ffmpeg
