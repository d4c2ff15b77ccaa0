#include "tools/playfile/FramesCommand.h"

#include <algorithm>
#include <cstdio>

#include "ole/os/OS.h"
#include "toolkit/services/Settings.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/FrameOrder.h"
#include "tools/playfile/FrameSet.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/OutputFolder.h"
#include "tools/playfile/PngWriter.h"
#include "tools/playfile/Progress.h"
#include "tools/playfile/SurfaceSum.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/Timeline.h"

namespace cli {
namespace {

constexpr unsigned maxThreads = 64;
/// More of them would only wait for the file's one reader.
constexpr unsigned maxUsualThreads = 4;
constexpr int timeDigits = 6;

std::string pictureName(std::uint32_t frame) {
    char name[32];
    std::snprintf(name, sizeof(name), "frame_%06u.png", frame);
    return name;
}

/// Seconds from the stream's start, "-" if neither the frame nor the file's rate tells.
std::string timeText(std::uint32_t frame, Ox::Image::Surface const& surface,
                     PlayFileMetadataRep const& metadata) {
    double const seconds = surface.getSampleData().timeSeconds;
    if (seconds >= 0.0) {
        return fixed(seconds, timeDigits);
    }
    double const framesPerSecond = Ox::getFramesPerSecond(metadata.videoSequence.frameRate);
    return framesPerSecond > 0.0 ? fixed(frame / framesPerSecond, timeDigits) : "-";
}

FrameFetcher::Work sumWork(PlayFileMetadataRep const& metadata) {
    return [&metadata](std::uint32_t frame, Ox::Image::Surface const& surface) {
        return std::to_string(frame) + ' ' + timeText(frame, surface, metadata) + ' ' +
               pixelFormatName(surface) + ' ' + asHex(sumOf(surface));
    };
}

/// @param size  as it is looked at
FrameFetcher::Work pictureWork(OutputFolder const& folder, PictureSize size,
                               Ox::Image::Orientation orientation) {
    return [&folder, size, orientation](std::uint32_t frame, Ox::Image::Surface const& surface) {
        Picture picture = Picture::of(surface).upright(orientation);
        if (size.width != 0) {
            picture = picture.scaled(size.width, size.height);
        }
        return folder.write(pictureName(frame), [&picture](std::FILE* stream, std::string& error) {
            return writePng(picture, stream, error);
        });
    };
}

}  // namespace

struct FramesCommand::Plan {
    FrameSet frames;
    FrameOrder order;
    PictureSize size;
    std::optional<OutputFolder> folder;
};

FramesCommand::FramesCommand() : threads_(std::min(OS()->getProcessorCount(), maxUsualThreads)) {}

void FramesCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("frames", "Reads frames: tells their sums or writes their pictures");
    command_->add_option("FILE", file_, "The media file")->required();
    CLI::Option* const frames =
        command_->add_option("--frames", frames_, "'all', or numbers and ranges from 0: '0,5,7-9'")
            ->capture_default_str();
    CLI::Option* const samples =
        command_
            ->add_option(
                "--samples", samples_,
                "The same for the stored frames, which in a file of varying rate aren't those of its "
                "time line")
            ->excludes(frames);
    command_->add_option("--at", times_, "The frames on show at these seconds: '0,2.5'")
        ->delimiter(',')
        ->excludes(frames)
        ->excludes(samples);
    command_
        ->add_option("--order", order_,
                     "'forward', 'backward', 'random:SEED' (each frame once before any comes again) or "
                     "'scrub:SEED' (around a moving playhead)")
        ->capture_default_str();
    command_->add_option("--count", count_, "How many frames to read in that order")
        ->check(CLI::Range(std::uint64_t(1), FrameSet::maxFrames));
    command_->add_option("--threads", threads_, "Threads that ask for frames")
        ->check(CLI::Range(1U, maxThreads))
        ->capture_default_str();
    CLI::Option_group* const result = command_->add_option_group("Result", "Exactly one of");
    result->add_flag("--md5", isMd5_,
                     "Write a line per frame: number, seconds, pixel format, MD5 of the unpadded planes");
    CLI::Option* const out =
        result->add_option("--out", out_, "Write a PNG picture per frame, upright, into this folder");
    result->require_option(1);
    command_->add_option("--size", size_, "Size of the pictures, WIDTHxHEIGHT")->needs(out);
}

/// Readers look at the setting when they open a file.
int FramesCommand::run(SessionOptions const& options) {
    Plan const plan = readPlan();
    Session session(options);
    if (!samples_.empty()) {
        setConfigInt("useFrameRateMap", 0);
    }
    session.loadReaders();
    Clip const clip(session, file_);
    Ox::Ptr<FileReadInstance> const file = clip.openVideo();
    return fetch(clip, plan, *file);
}

FramesCommand::Plan FramesCommand::readPlan() const {
    FrameSet const frames =
        samples_.empty() ? FrameSet::parse(frames_) : FrameSet::parse(samples_, "--samples");
    Plan plan{frames, FrameOrder::parse(order_), {}, {}};
    if (!size_.empty()) {
        plan.size = PictureSize::parse(size_);
    }
    if (!isMd5_) {
        plan.folder.emplace(out_);
    }
    return plan;
}

std::vector<std::uint32_t> FramesCommand::namedFrames(Plan const& plan, PlayFileMetadataRep const& metadata,
                                                      std::string const& path) const {
    Timeline const timeline(metadata);
    if (times_.empty()) {
        return plan.frames.resolve(timeline.frameCount(), path);
    }
    std::vector<std::uint32_t> frames;
    for (double const seconds : times_) {
        frames.push_back(timeline.frameAt(seconds, path));
    }
    return FrameSet::of(frames).resolve(timeline.frameCount(), path);
}

int FramesCommand::fetch(Clip const& clip, Plan const& plan, FileReadInstance const& file) const {
    PlayFileMetadataRep const& metadata = *file.metadata;
    std::string const& path = clip.input().path();
    std::vector<std::uint32_t> const frames = plan.order.apply(namedFrames(plan, metadata, path), count_);
    PictureSize const size = plan.size.stored(metadata.orientation);
    FrameFetcher fetcher(clip.videoCookie(), metadata,
                         isMd5_ ? nativeFormat(metadata) : rgbFormat(metadata, size.width, size.height),
                         threads_);
    Progress progress("frames", frames.size(), true);
    int exitCode = exitSuccess;
    fetcher.run(frames,
                isMd5_ ? sumWork(metadata) : pictureWork(*plan.folder, plan.size, metadata.orientation),
                [&](FrameOutcome const& outcome) {
                    if (outcome.isGood) {
                        writeLine(outcome.text);
                    } else {
                        writeProblem("frame " + std::to_string(outcome.frame) + " of " + inQuotes(path) +
                                     " cannot be read; the file may be damaged there");
                        exitCode = exitFailure;
                    }
                    progress.step();
                });
    return exitCode;
}

}  // namespace cli
