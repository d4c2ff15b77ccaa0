#include "tools/playfile/SoundReport.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <numeric>

#include "playfile/Counters.h"
#include "toolkit/sound/SampleFormat.h"
#include "tools/playfile/PngWriter.h"
#include "tools/playfile/Progress.h"
#include "tools/playfile/SoundClip.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint32_t blockSamples = 4096;
constexpr unsigned threads = 2;
constexpr int levelDigits = 1;

std::string waveformName(ChannelRange const& range) {
    char name[32];
    std::snprintf(name, sizeof(name), "waveform_%02u.png", unsigned{range.channel});
    return name;
}

char const* formatName(ChannelRange const& range) {
    return Aud::nameOf(static_cast<Aud::eSampleFormat>(range.format.sampleFormat));
}

/// Reads of files and channels served since the program began.
struct Served {
    std::uint64_t reads = playFileCounters().audioStreamReads.load();
    std::uint64_t channels = reads + playFileCounters().audioChannelHits.load();
};

}  // namespace

std::optional<SoundReport> readSound(Session& session, Clip const& clip) {
    Ox::Ptr<FileReadInstance> const file = clip.trySound();
    if (!file || file->metadata->audioSampleCount == 0) {
        return std::nullopt;
    }
    SoundReport report;
    report.ranges = selectChannels(session, clip, *file, {}, {});
    SampleFetcher fetcher(report.ranges, blockSamples, threads);
    std::vector<std::uint32_t> blocks(fetcher.getBlockCount());
    std::iota(blocks.begin(), blocks.end(), 0U);
    LevelSink levels(report.ranges);
    Progress progress("sound", blocks.size() * report.ranges.size(), false);
    Served const before;
    auto const start = std::chrono::steady_clock::now();
    fetcher.run(blocks, [&](SampleFetcher::Samples const& samples) {
        report.failed += samples.isGood ? 0 : 1;
        levels.take(samples);
        progress.step();
    });
    report.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    Served const after;
    report.fileReads = after.reads - before.reads;
    report.channelsServed = after.channels - before.channels;
    report.levels = levels.channels();
    return report;
}

std::vector<std::string> writeWaveforms(SoundReport const& report, OutputFolder const& folder) {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < report.ranges.size(); ++i) {
        Picture const picture = drawWaveform(report.levels[i]);
        paths.push_back(folder.write(
            waveformName(report.ranges[i]),
            [&](std::FILE* stream, std::string& error) { return writePng(picture, stream, error); }));
    }
    return paths;
}

Json describeSound(SoundReport const& report) {
    Json json;
    json["fileReads"] = report.fileReads;
    json["channelBlocksServed"] = report.channelsServed;
    json["failed"] = report.failed;
    json["seconds"] = report.seconds;
    json["channels"] = Json::array();
    for (std::size_t i = 0; i < report.ranges.size(); ++i) {
        ChannelRange const& range = report.ranges[i];
        ChannelLevels const& levels = report.levels[i];
        Json channel;
        channel["channel"] = range.channel;
        channel["stream"] = range.stream;
        channel["sampleFormat"] = formatName(range);
        channel["sampleRate"] = range.format.sampleRate;
        channel["samples"] = levels.samples;
        channel["peakDecibels"] = asDecibels(levels.peak);
        channel["rmsDecibels"] = asDecibels(levels.rms());
        channel["waveform"] = waveformName(range);
        json["channels"].push_back(channel);
    }
    return json;
}

std::string soundTable(SoundReport const& report) {
    char line[160];
    std::snprintf(line, sizeof(line), "%-8s%8s%8s%10s%14s%12s%12s", "channel", "stream", "form", "Hz",
                  "samples", "peak dBFS", "RMS dBFS");
    std::string text = line;
    for (std::size_t i = 0; i < report.ranges.size(); ++i) {
        ChannelRange const& range = report.ranges[i];
        ChannelLevels const& levels = report.levels[i];
        std::snprintf(line, sizeof(line), "\n%-8u%8u%8s%10.0f%14llu%12.*f%12.*f", unsigned{range.channel},
                      range.stream, formatName(range), range.format.sampleRate,
                      static_cast<unsigned long long>(levels.samples), levelDigits, asDecibels(levels.peak),
                      levelDigits, asDecibels(levels.rms()));
        text += line;
    }
    return text + "\nsound: " + std::to_string(report.fileReads) + " reads of the file served " +
           std::to_string(report.channelsServed) + " blocks of channels";
}

}  // namespace cli
