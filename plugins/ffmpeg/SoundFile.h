#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/CodedTrack.h"
#include "plugins/ffmpeg/PcmTrack.h"
#include "plugins/ffmpeg/SoundForm.h"
#include "plugins/ffmpeg/StreamFacts.h"

namespace playfile_ffmpeg {

/// One stream of sound of an open file: either its samples lie there, or packets do.
///
/// A stream that nothing here can read has neither, and keeps its place among the others.
struct SoundTrack {
    SoundForm form;
    AvPtr<AVCodecParameters> parameters;
    std::unique_ptr<PcmTrack> pcm;
    std::unique_ptr<CodedTrack> coded;

    int64_t sampleCount() const;
};

/// The sound of one file, sample-exact whatever the order in which samples are asked for: sample 0 is the
/// first one that is heard.
///
/// Threads      One at a time.
class SoundFile {
public:
    /// Empty with the reason in `error`, also for a file without sound. Blocks on the file.
    static std::unique_ptr<SoundFile> open(std::string const& path, std::string& error);

    /// All streams of sound, in the container's order.
    std::vector<SoundTrack>& tracks() { return tracks_; }
    std::vector<SoundTrack> const& tracks() const { return tracks_; }
    /// Of the longest stream.
    int64_t sampleCount() const;
    /// What the file tells of itself.
    StreamFacts const& facts() const { return facts_; }
    bool hasPicture() const { return hasPicture_; }

private:
    SoundFile() = default;

    StreamFacts facts_;
    bool hasPicture_ = false;
    std::vector<SoundTrack> tracks_;
};

}  // namespace playfile_ffmpeg
