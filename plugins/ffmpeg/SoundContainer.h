#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/OpenContainer.h"

namespace playfile_ffmpeg {

/// An opened container with its streams of sound; packets of all others are discarded.
///
/// Threads      One at a time.
class SoundContainer {
public:
    /// False with the reason in `error`, also for a file without sound. May block on the file.
    [[nodiscard]] bool open(std::string const& path, std::string& error);

    AVFormatContext& format() const { return *format_; }
    /// In the container's order.
    std::vector<AVStream*> const& streams() const { return streams_; }
    bool isFormat(char const* name) const;
    /// True if there is a video stream that is more than a cover picture.
    bool hasPicture() const;

    /// From now on only packets of this stream come.
    void keepOnly(AVStream const& stream);

    /// Reads the next packet of the streams that are kept; a code of FFmpeg below 0 at the end.
    int readPacket(AVPacket& packet);

    /// False if the container can't go there. After a jump to a place or a time the next packet may be one
    /// before or after.
    bool goToPlace(int64_t position);
    bool goToTime(AVStream const& stream, int64_t time);
    /// True if places find a packet better than times do.
    bool seeksByPlace() const;

private:
    bool openInput(std::string const& path, std::string& error);
    void collectStreams();
    void discardPictures();
    void discardOthers();
    bool statesWhatIsNeeded() const;

    Deadline deadline_;
    AvPtr<AVFormatContext> format_;
    std::vector<AVStream*> streams_;
};

}  // namespace playfile_ffmpeg
