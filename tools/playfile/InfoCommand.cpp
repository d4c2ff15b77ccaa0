#include "tools/playfile/InfoCommand.h"

#include <algorithm>

#include "tools/playfile/Clip.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/FileReport.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/Timeline.h"

namespace cli {
namespace {

Json describeMoment(double seconds, Clip const& clip, PlayFileMetadataRep const& metadata) {
    Timeline const timeline(metadata);
    std::uint32_t const frame = timeline.frameAt(seconds, clip.input().path());
    Json json;
    json["seconds"] = seconds;
    json["frame"] = frame;
    json["storedFrame"] = timeline.storedFrame(frame);
    return json;
}

/// A histogram for people: a line for each duration, with a bar as long as its frames are many.
void drawBars(Json& durations) {
    constexpr std::uint32_t longestBar = 40;
    std::uint32_t most = 1;
    for (Json const& duration : durations) {
        most = std::max(most, duration["frames"].get<std::uint32_t>());
    }
    Json lines = Json::object();
    for (Json const& duration : durations) {
        std::uint64_t const frames = duration["frames"].get<std::uint32_t>();
        std::string const bar((frames * longestBar + most - 1) / most, '#');
        lines[fixed(duration["seconds"].get<double>(), 6) + " s"] = std::to_string(frames) + ' ' + bar;
    }
    durations = std::move(lines);
}

}  // namespace

void InfoCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("info", "Tells all that is known of a media file");
    command_->add_option("FILE", file_, "The media file")->required();
    command_->add_flag("--json", isJson_, "Write JSON");
    command_->add_option("--at", times_, "Tell also which frames are on show at these seconds: '0,2.5'")
        ->delimiter(',');
}

int InfoCommand::run(SessionOptions const& options) {
    Session session(options);
    session.loadReaders();
    Clip const clip(session, file_);
    Ox::Ptr<FileReadInstance> const file = clip.openAny();
    Json report = describeFile(clip, file, explainChoice(session.log(), *file));
    for (double const seconds : times_) {
        report["at"].push_back(describeMoment(seconds, clip, *file->metadata));
    }
    if (!isJson_ && report["video"].contains("frameDurations")) {
        drawBars(report["video"]["frameDurations"]);
    }
    writeLine(isJson_ ? toJsonText(report) : toPlainText(report));
    return exitSuccess;
}

}  // namespace cli
