#include "tools/playfile/AudioCommand.h"

#include <algorithm>
#include <numeric>

#include "ole/os/OS.h"
#include "toolkit/sound/SampleFormat.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/FrameOrder.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Progress.h"
#include "tools/playfile/SampleSinks.h"
#include "tools/playfile/SoundClip.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr unsigned maxThreads = 64;
/// More of them would only wait for the file's one reader.
constexpr unsigned maxUsualThreads = 2;
/// The size for which compressed streams are read by runs of whole frames.
constexpr std::uint32_t usualBlock = 4096;
constexpr std::uint32_t maxBlock = 1U << 20;
constexpr std::uint64_t maxBlocks = 50'000'000;

char const* formatName(Aud::Metadata const& format) {
    return Aud::nameOf(static_cast<Aud::eSampleFormat>(format.sampleFormat));
}

bool isTimecode(std::string const& text) {
    return text.find(':') != std::string::npos;
}

std::vector<std::uint32_t> orderedBlocks(FrameOrder const& order, std::uint64_t count) {
    if (count > maxBlocks) {
        throw CommandError(
            "these are more than " + std::to_string(maxBlocks) + " blocks; ask for larger ones with --block",
            exitUsage);
    }
    std::vector<std::uint32_t> blocks(count);
    std::iota(blocks.begin(), blocks.end(), 0U);
    return order.apply(blocks, std::nullopt);
}

/// Reads all blocks into a sink; the channels of which something failed.
std::vector<bool> fetch(std::string const& path, std::vector<ChannelRange> const& ranges,
                        SampleFetcher& fetcher, std::vector<std::uint32_t> const& blocks, iSampleSink& sink) {
    std::vector<bool> hasFailed(ranges.size());
    Progress progress("blocks", blocks.size() * ranges.size(), false);
    fetcher.run(blocks, [&](SampleFetcher::Samples const& samples) {
        ChannelRange const& range = ranges[samples.channelIndex];
        if (!samples.isGood) {
            hasFailed[samples.channelIndex] = true;
            writeProblem("channel " + std::to_string(range.channel) + " of " + inQuotes(path) +
                         " cannot be read from sample " + std::to_string(range.start + samples.offset) +
                         " on; the file may be damaged there");
        }
        sink.take(samples);
        progress.step();
    });
    sink.finish();
    return hasFailed;
}

/// A WAVE file has one format and one length for all of its channels.
void requireOneFormat(std::vector<ChannelRange> const& ranges) {
    ChannelRange const& first = ranges.front();
    for (ChannelRange const& range : ranges) {
        if (range.format.sampleFormat != first.format.sampleFormat ||
            range.format.sampleRate != first.format.sampleRate || range.count != first.count) {
            throw CommandError("channels " + std::to_string(first.channel) + " and " +
                               std::to_string(range.channel) +
                               " differ in sample format or rate, and one file can't hold both; choose with "
                               "--channels");
        }
    }
    if (first.format.sampleFormat == Aud::sampleUnknown) {
        throw CommandError("the reader doesn't say what samples these are; there is no such WAVE file");
    }
}

}  // namespace

struct AudioCommand::Plan {
    SampleSelection selection;
    FrameOrder order;
    std::optional<Ox::FrameRate> rate;
};

AudioCommand::AudioCommand()
    : block_(usualBlock), threads_(std::min(OS()->getProcessorCount(), maxUsualThreads)) {}

void AudioCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("audio", "Reads samples: tells their sums or writes them to a file");
    command_->add_option("FILE", file_, "The media file")->required();
    command_->add_option("--channels", channels_, "'all', or numbers and ranges from 1: '1,3,5-8'")
        ->capture_default_str();
    command_
        ->add_option("--from", from_,
                     "Where to begin: samples (48000), seconds (1.5s) or a time code (01:00:00:12)")
        ->capture_default_str();
    command_->add_option("--count", count_, "How much, written alike; else to the end");
    command_->add_option("--rate", rate_, "Frames a second of time codes, 25 or 30000/1001; else the file's");
    command_->add_option("--order", order_, "'forward', 'backward' or 'random:SEED': the order of the blocks")
        ->capture_default_str();
    command_->add_option("--block", block_, "Samples of a channel that are asked for at once")
        ->check(CLI::Range(1U, maxBlock))
        ->capture_default_str();
    command_->add_option("--threads", threads_, "Threads that ask for samples")
        ->check(CLI::Range(1U, maxThreads))
        ->capture_default_str();
    CLI::Option_group* const result = command_->add_option_group("Result", "Exactly one of");
    result->add_flag(
        "--md5", isMd5_,
        "Write a line per channel: number, stream, sample format, samples a second, samples, MD5");
    result->add_option("--out", out_, "Write the channels into this WAVE file");
    result->require_option(1);
}

int AudioCommand::run(SessionOptions const& options) {
    Plan const plan = readPlan();
    Session session(options);
    session.loadReaders();
    Clip const clip(session, file_);
    std::vector<ChannelRange> const ranges = select(session, clip, plan);
    std::string const& path = clip.input().path();
    return isMd5_ ? writeSums(path, plan, ranges) : writeFile(path, plan, ranges);
}

AudioCommand::Plan AudioCommand::readPlan() const {
    Plan plan{{}, FrameOrder::parse(order_), {}};
    if (order_.rfind("scrub", 0) == 0) {
        throw CommandError("--order scrub leaves samples out; write forward, backward or random:SEED",
                           exitUsage);
    }
    plan.selection.channels = ChannelSet::parse(channels_);
    plan.selection.from = SamplePosition::parse(from_, "--from");
    plan.selection.toEnd = count_.empty();
    if (!count_.empty()) {
        plan.selection.count = SamplePosition::parse(count_, "--count");
    }
    if (!rate_.empty()) {
        plan.rate = parseFrameRate(rate_);
    }
    return plan;
}

std::vector<ChannelRange> AudioCommand::select(Session& session, Clip const& clip, Plan const& plan) const {
    Ox::Ptr<FileReadInstance> const file = clip.openAudio();
    TimeScale scale;
    if (isTimecode(from_) || isTimecode(count_)) {
        scale = findTimeScale(clip, *file, plan.rate);
    }
    return selectChannels(session, clip, *file, scale, plan.selection);
}

int AudioCommand::writeSums(std::string const& path, Plan const& plan,
                            std::vector<ChannelRange> const& ranges) const {
    SampleFetcher fetcher(ranges, block_, threads_);
    std::vector<std::uint32_t> const blocks = orderedBlocks(plan.order, fetcher.getBlockCount());
    SumSink sums(ranges.size());
    std::optional<SortingSink> sorting;
    if (order_ != "forward") {
        sorting.emplace(ranges, sums);
    }
    iSampleSink& sink = sorting ? static_cast<iSampleSink&>(*sorting) : sums;
    std::vector<bool> const hasFailed = fetch(path, ranges, fetcher, blocks, sink);
    for (std::size_t index = 0; index < ranges.size(); ++index) {
        ChannelRange const& range = ranges[index];
        SumSink::Channel& channel = sums.channels()[index];
        if (!hasFailed[index]) {
            writeLine(std::to_string(range.channel) + ' ' + std::to_string(range.stream) + ' ' +
                      formatName(range.format) + ' ' + fixed(range.format.sampleRate, 0) + ' ' +
                      std::to_string(channel.byteCount / std::max(range.format.bytesPerSample, 1U)) + ' ' +
                      asHex(channel.sum.finish()));
        }
    }
    return std::find(hasFailed.begin(), hasFailed.end(), true) == hasFailed.end() ? exitSuccess : exitFailure;
}

int AudioCommand::writeFile(std::string const& path, Plan const& plan,
                            std::vector<ChannelRange> const& ranges) const {
    requireOneFormat(ranges);
    SampleFetcher fetcher(ranges, block_, threads_);
    std::vector<std::uint32_t> const blocks = orderedBlocks(plan.order, fetcher.getBlockCount());
    WavSink sink(out_, ranges, block_);
    std::vector<bool> const hasFailed = fetch(path, ranges, fetcher, blocks, sink);
    return std::find(hasFailed.begin(), hasFailed.end(), true) == hasFailed.end() ? exitSuccess : exitFailure;
}

}  // namespace cli
