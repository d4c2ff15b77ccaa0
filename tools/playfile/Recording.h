#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/playfile/Clip.h"
#include "tools/playfile/SampleFetcher.h"
#include "tools/playfile/Session.h"
#include "tools/playfile/Take.h"

namespace cli {

/// What of a source is recorded, and as what.
struct RecordingPlan {
    double fromSeconds = 0.0;
    /// To the end of the source if it isn't set.
    std::optional<double> seconds;
    std::string channels = "all";
    /// The formats; "none" leaves a medium out.
    std::string videoFormat;
    std::string soundFormat;
    configb options;
};

/// The playing of a source into a take, second by second, pictures and sound in turn.
///
/// Errors  CommandError, which names the file.
class Recording {
public:
    /// Told after each second, with how many there are and how many will be.
    using Tell = std::function<void(std::uint64_t done, std::uint64_t total)>;

    /// Opens the source, and makes the files of the take.
    Recording(Session& session, Clip const& clip, RecordingPlan const& plan, Take& take);

    /// Plays it all. It ends early if somebody asks for that (`Stopped`), or something fails.
    void run(Tell const& tell);

private:
    void selectPicture(RecordingPlan const& plan);
    void selectSound(Session& session, RecordingPlan const& plan);
    void recordPictures(std::uint64_t part);
    void recordSamples(std::uint64_t part);
    [[nodiscard]] std::uint64_t upTo(std::uint64_t part, std::uint64_t whole) const;

    Clip const& clip_;
    Take& take_;
    Ox::Ptr<FileReadInstance> picture_;
    Ox::Ptr<FileReadInstance> sound_;
    std::uint32_t firstFrame_ = 0;
    std::uint64_t frameCount_ = 0;
    std::vector<ChannelRange> ranges_;
    std::uint64_t partCount_ = 1;
};

}  // namespace cli
