#include "tools/playfile/RecordCommand.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/OutputFolder.h"
#include "tools/playfile/PictureSize.h"
#include "tools/playfile/Progress.h"
#include "tools/playfile/Recording.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

/// Where no terminal shows how far the work has come, a line does so often.
constexpr std::chrono::seconds lineInterval{5};
constexpr double longest = 86400.0;

/// How far the take has come: a display on a terminal, lines in a pipe.
class TakeProgress {
public:
    void show(std::uint64_t done, std::uint64_t total) {
        if (!progress_) {
            progress_ = std::make_unique<Progress>("seconds", total, false);
        }
        progress_->step();
        if (::isatty(STDERR_FILENO) == 0 && Clock::now() >= nextLine_) {
            nextLine_ = Clock::now() + lineInterval;
            writeProblem("recorded " + std::to_string(done) + " of " + std::to_string(total) + " s");
        }
    }

private:
    std::unique_ptr<Progress> progress_;
    Clock::time_point nextLine_ = Clock::now() + lineInterval;
};

configb parseOptions(std::vector<std::string> const& texts) {
    configb options;
    for (std::string const& text : texts) {
        std::size_t const sign = text.find('=');
        if (sign == std::string::npos || sign == 0) {
            throw CommandError("--option takes KEY=VALUE, not " + inQuotes(text), exitUsage);
        }
        options.set(text.substr(0, sign).c_str(), text.substr(sign + 1).c_str());
    }
    return options;
}

/// Plays the source; how it ended, which never keeps the files from being ended.
int play(Recording& recording, Json& report) {
    TakeProgress progress;
    try {
        recording.run([&](std::uint64_t done, std::uint64_t total) { progress.show(done, total); });
    } catch (Stopped const& stopped) {
        report["ended"] = "stopped";
        return stopped.exitCode();
    } catch (CommandError const& error) {
        report["ended"] = "failed";
        writeProblem(error.what());
        return exitFailure;
    }
    report["ended"] = "complete";
    return exitSuccess;
}

}  // namespace

void RecordCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand(
        "record", "Plays a file, or a made source, into new material: a file of pictures, and one a channel");
    declareSource();
    declareResult();
    command_->add_flag("--json", isJson_, "Write the report as JSON");
}

void RecordCommand::declareSource() {
    CLI::Option* const file = command_->add_option("FILE", file_, "The media file that is played");
    CLI::Option* const source =
        command_->add_option("--source", source_, "Instead of a file: 'numbers', made pictures and tones")
            ->check(CLI::IsMember({"numbers"}))
            ->excludes(file);
    command_->add_option("--from", from_, "Where in the file to begin, in seconds")
        ->check(CLI::Range(0.0, longest))
        ->capture_default_str();
    command_->add_option("--seconds", seconds_, "How much; else to the end of the file, or 10 s of a source")
        ->check(CLI::Range(0.001, longest));
    command_->add_option("--channels", channels_, "'all', or numbers and ranges from 1: '1,3,5-8'")
        ->capture_default_str();
    command_->add_option("--rate", shape_.rate, "Frames a second of a source, 25 or 30000/1001")
        ->needs(source)
        ->capture_default_str();
    command_->add_option("--size", size_, "Size of a source's pictures, WIDTHxHEIGHT")
        ->needs(source)
        ->capture_default_str();
    command_->add_option("--tones", shape_.channels, "Channels of a source")
        ->needs(source)
        ->check(CLI::Range(0, 64))
        ->capture_default_str();
    command_->add_option("--bits", shape_.bits, "Bits of a source's samples")
        ->needs(source)
        ->check(CLI::IsMember({16, 24, 32}))
        ->capture_default_str();
}

void RecordCommand::declareResult() {
    command_->add_option("--out", out_, "The folder into which the new material goes")->required();
    command_
        ->add_option("--video", video_,
                     "Format of the pictures: mov-prores, mov-dnxhr, mov-h264, mxf-dnxhr, or none")
        ->capture_default_str();
    command_->add_option("--sound", sound_, "Format of the sound, a file a channel: wav, bwf, or none")
        ->capture_default_str();
    command_->add_option("--option", options_,
                         "What a writer understands: KEY=VALUE, as in profile=hq; may come more than once");
}

std::unique_ptr<SyntheticSource> RecordCommand::makeSource() const {
    if (source_.empty()) {
        return nullptr;
    }
    PictureSize const size = PictureSize::parse(size_);
    SyntheticShape shape = shape_;
    shape.seconds = seconds_.value_or(shape.seconds) + from_;
    shape.width = size.width;
    shape.height = size.height;
    return std::make_unique<SyntheticSource>(shape);
}

int RecordCommand::run(SessionOptions const& options) {
    if (file_.empty() && source_.empty()) {
        throw CommandError("name a file to play, or a source with --source", exitUsage);
    }
    RecordingPlan const plan{from_, seconds_, channels_, video_, sound_, parseOptions(options_)};
    std::unique_ptr<SyntheticSource> const source = makeSource();
    OutputFolder const folder(out_);
    Session session(options);
    session.loadReaders();
    Clip const clip(session, source ? source->path() : file_);
    Take take(session, out_);
    Clock::time_point const start = Clock::now();
    Json ending;
    int exitCode = exitFailure;
    {
        Recording recording(session, clip, plan, take);
        exitCode = play(recording, ending);
    }
    bool const isWhole = take.finish();
    Json report = take.report();
    report.update(ending);
    report["elapsedSeconds"] = std::chrono::duration<double>(Clock::now() - start).count();
    writeLine(isJson_ ? toJsonText(report) : toPlainText(report));
    return exitCode == exitSuccess && !isWhole ? exitFailure : exitCode;
}

}  // namespace cli
