#include "tools/playfile/ExtractCommand.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/ExtractLog.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/SamplePosition.h"
#include "tools/playfile/SoundClip.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/Timeline.h"

namespace cli {
namespace {

constexpr char const* onlyPicture = "picture";
constexpr char const* onlySound = "sound";

bool isWaveName(std::string const& name) {
    return std::filesystem::path(name).extension() == ".wav";
}

/// Where a section begins or ends, in frames or samples. @param rate  of these, a second
std::uint64_t placeOf(std::string const& text, char const* option, double rate, TimeScale const& scale) {
    return SamplePosition::parse(text, option).asPlace(rate, scale);
}

void requireOrder(std::uint64_t first, std::uint64_t& end, std::uint64_t available,
                  std::string const& things) {
    if (first >= available) {
        throw CommandError("the file has " + std::to_string(available) + " " + things +
                           "; --from names number " + std::to_string(first) + ", behind its end");
    }
    if (end <= first) {
        throw CommandError("--to doesn't lie behind --from; the section would be empty", exitUsage);
    }
    if (end > available) {
        throw CommandError("the file has only " + std::to_string(available) + " " + things +
                           "; let --to name an earlier place, or leave it away");
    }
}

/// The catalogue's name of the copy. It is made of the path, as that of every file is here.
Cookie destinationOf(std::string const& target, CookieType type) {
    return InputFile(target).cookie(type, type == 'S' ? 1 : 0);
}

}  // namespace

void ExtractCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand(
        "extract", "Writes a section of a clip into a new file, with every pixel and sample as it is");
    command_->add_option("FILE", file_, "The media file")->required();
    command_
        ->add_option("--from", from_,
                     "Where to begin: frames (25), seconds (1.5s) or a time code (01:00:00:12); samples "
                     "instead of frames where only sound is written")
        ->capture_default_str();
    command_->add_option("--to", to_, "The first that isn't wanted any more, written alike; else to the end");
    command_->add_option(
        "-o,--out", out_,
        "The new file, named .mov, or .wav for sound alone; else FILE-section.mov or .wav in "
        "this folder");
    command_->add_option("--only", only_, "'picture' or 'sound': leave the other out")
        ->check(CLI::IsMember({onlyPicture, onlySound}));
    command_->add_flag("--json", isJson_, "Tell what was written as JSON");
}

int ExtractCommand::run(SessionOptions const& options) {
    Session session(options);
    session.loadReaders();
    Clip const clip(session, file_);
    Section const wanted = section(clip);
    std::string const path = target(clip, wanted.hasPicture);
    FileXferSpec spec;
    spec.source = wanted.hasPicture ? clip.videoCookie() : clip.addChannel(session, 1);
    spec.destination = destinationOf(path, wanted.hasPicture ? 'V' : 'S');
    spec.startSample = wanted.first;
    spec.endSample = wanted.end;
    spec.options.set("path", path.c_str());
    spec.options.set("channels", "all");
    if (wanted.hasPicture && wanted.firstSample < wanted.endSample) {
        spec.options.set("soundStart", std::to_string(wanted.firstSample).c_str());
        spec.options.set("soundEnd", std::to_string(wanted.endSample).c_str());
    }
    transfer(spec, path);
    tell(wanted, path);
    return exitSuccess;
}

bool ExtractCommand::wantsPicture(Clip const& clip) const {
    if (only_ == onlySound || isWaveName(out_)) {
        return false;
    }
    return only_ == onlyPicture || clip.tryVideo();
}

ExtractCommand::Section ExtractCommand::section(Clip const& clip) const {
    if (!wantsPicture(clip)) {
        return soundSection(clip, *clip.openAudio());
    }
    Ox::Ptr<FileReadInstance> const picture = clip.openVideo();
    Section wanted = pictureSection(*picture);
    Ox::Ptr<FileReadInstance> const sound =
        only_ == onlyPicture ? Ox::Ptr<FileReadInstance>() : clip.trySound();
    if (sound) {
        addSound(wanted, *picture, *sound);
    }
    return wanted;
}

ExtractCommand::Section ExtractCommand::pictureSection(FileReadInstance const& file) const {
    PlayFileMetadataRep const& metadata = *file.metadata;
    double const rate = Ox::getFramesPerSecond(metadata.videoSequence.frameRate);
    TimeScale scale;
    scale.frameRate = metadata.videoSequence.frameRate;
    LightweightString<char> const& start = metadata.editLabel.startTimecode();
    if (!start.empty() && rate > 0.0) {
        scale.startFrame = timecodeFrames(start.str(), scale.frameRate);
    }
    Section wanted;
    wanted.hasPicture = true;
    std::uint64_t const available = Timeline(metadata).frameCount();
    wanted.first = placeOf(from_, "--from", rate, scale);
    wanted.end = to_.empty() ? available : placeOf(to_, "--to", rate, scale);
    requireOrder(wanted.first, wanted.end, available, "frames");
    return wanted;
}

ExtractCommand::Section ExtractCommand::soundSection(Clip const& clip, FileReadInstance const& file) const {
    PlayFileMetadataRep const& metadata = *file.metadata;
    double const rate = metadata.audioStreams.front().sampleRate;
    bool const hasTimecode = (from_ + to_).find(':') != std::string::npos;
    TimeScale const scale = hasTimecode ? findTimeScale(clip, file, {}) : TimeScale();
    Section wanted;
    wanted.first = placeOf(from_, "--from", rate, scale);
    wanted.end = to_.empty() ? metadata.audioSampleCount : placeOf(to_, "--to", rate, scale);
    requireOrder(wanted.first, wanted.end, metadata.audioSampleCount, "samples");
    return wanted;
}

/// The samples from the beginning of the first frame up to the end of the last.
void ExtractCommand::addSound(Section& section, FileReadInstance const& picture,
                              FileReadInstance const& sound) const {
    double const frames = Ox::getFramesPerSecond(picture.metadata->videoSequence.frameRate);
    double const samples = sound.metadata->audioStreams.front().sampleRate;
    auto const sampleAt = [&](std::uint64_t frame) {
        auto const sample =
            static_cast<std::uint64_t>(std::llround(static_cast<double>(frame) * samples / frames));
        return std::min(sample, sound.metadata->audioSampleCount);
    };
    section.firstSample = sampleAt(section.first);
    section.endSample = sampleAt(section.end);
}

/// A name that the user hasn't chosen replaces nothing.
std::string ExtractCommand::target(Clip const& clip, bool hasPicture) const {
    if (!out_.empty()) {
        return InputFile(out_).path();
    }
    std::string const stem = std::filesystem::path(clip.input().path()).stem().string();
    std::string const name = InputFile(stem + (hasPicture ? "-section.mov" : "-section.wav")).path();
    if (std::filesystem::exists(name)) {
        throw CommandError(inQuotes(name) + " exists already; name the new file with -o");
    }
    return name;
}

void ExtractCommand::transfer(FileXferSpec& spec, std::string const& target) const {
    iFileXferManager* const manager = spec.getOurFileXferManager();
    if (manager == nullptr) {
        throw CommandError("no plug-in can copy a section of " + inQuotes(file_) +
                           "; the FFmpeg plug-in does that, name its folder with --plugin-path");
    }
    Ox::Ptr<ExtractLog> const log = Ox::makePtr<ExtractLog>(spec);
    LoggerHandle handle(log);
    OxResult const result = manager->transfer(&spec, handle);
    if (result == oxInterrupted) {
        checkForInterrupt();
    }
    if (result != oxSuccess) {
        throw CommandError(log->problem().empty()
                               ? "cannot write " + inQuotes(target) + "; --verbose tells more"
                               : printable(log->problem()));
    }
}

void ExtractCommand::tell(Section const& section, std::string const& target) const {
    if (!isJson_) {
        writeLine("wrote " + printable(target));
        return;
    }
    Json report;
    report["file"] = target;
    report["bytes"] = std::filesystem::file_size(target);
    char const* const first = section.hasPicture ? "firstFrame" : "firstSample";
    report[first] = section.first;
    report[section.hasPicture ? "frames" : "samples"] = section.end - section.first;
    if (section.hasPicture && section.firstSample < section.endSample) {
        report["firstSample"] = section.firstSample;
        report["samples"] = section.endSample - section.firstSample;
    }
    writeLine(toJsonText(report));
}

}  // namespace cli
