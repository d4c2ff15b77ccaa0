#include "tools/playfile/Measurements.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>

#include "tools/playfile/ContactSheet.h"
#include "tools/playfile/FrameFetcher.h"
#include "tools/playfile/FrameOrder.h"
#include "tools/playfile/Progress.h"
#include "tools/playfile/Timeline.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::size_t mostInOrder = 250;
constexpr std::size_t mostRandom = 50;
constexpr std::uint32_t randomPlaces = 1000;
constexpr unsigned sharingThreads = 4;
constexpr Milliseconds longestSeries{4000.0};
char const* const randomOrder = "random:1";

struct Column {
    char const* name;
    double percent;
};
constexpr std::array<Column, 4> percentiles{{{"50%", 50.0}, {"90%", 90.0}, {"99%", 99.0}, {"most", 100.0}}};

/// What is read, and in which form.
struct Target {
    Cookie const& cookie;
    PlayFileMetadataRep const& metadata;
    DecodeFormat format;
};

std::vector<std::uint32_t> firstFrames(PlayFileMetadataRep const& metadata, std::size_t count) {
    std::vector<std::uint32_t> frames(std::min<std::size_t>(Timeline(metadata).frameCount(), count));
    std::iota(frames.begin(), frames.end(), 0U);
    return frames;
}

std::vector<std::uint32_t> randomFrames(PlayFileMetadataRep const& metadata) {
    std::vector<std::uint32_t> const places = spreadFrames(Timeline(metadata).frameCount(), randomPlaces);
    return FrameOrder::parse(randomOrder).apply(places, std::min(places.size(), mostRandom));
}

void readOne(ReadSeries& series, Target const& target, std::uint32_t frame, Milliseconds before) {
    Clock::time_point const start = Clock::now();
    Ox::Image::Surface surface;
    auto request = std::make_unique<FrameRequest>(target.cookie, frame, target.format);
    bool const isGood = finishRequest(request, surface);
    series.latencies.add(Milliseconds(before + (Clock::now() - start)).count());
    series.failed += isGood ? 0 : 1;
}

ReadSeries readSeries(char const* label, Target const& target, std::vector<std::uint32_t> const& frames) {
    forgetFinishedReads();
    Progress progress(label, frames.size(), false);
    ReadSeries series;
    Clock::time_point const start = Clock::now();
    for (std::uint32_t const frame : frames) {
        readOne(series, target, frame, Milliseconds(0));
        progress.step();
        if (Clock::now() - start > longestSeries) {
            break;
        }
    }
    return series;
}

SharedReads readShared(Target const& target, std::vector<std::uint32_t> const& frames) {
    forgetFinishedReads();
    Progress progress("shared by threads", frames.size(), false);
    SharedReads shared;
    shared.framesOfThread.resize(sharingThreads);
    FrameFetcher fetcher(target.cookie, target.metadata, target.format, sharingThreads);
    Clock::time_point const start = Clock::now();
    fetcher.run(
        frames, [](std::uint32_t, Ox::Image::Surface const&) { return std::string(); },
        [&](FrameOutcome const& outcome) {
            shared.framesOfThread[outcome.thread] += outcome.isGood ? 1 : 0;
            shared.failed += outcome.isGood ? 0 : 1;
            progress.step();
        });
    shared.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    return shared;
}

Json describeSeries(ReadSeries const& series) {
    Json json;
    json["frames"] = series.latencies.count();
    json["failed"] = series.failed;
    json["meanMs"] = series.latencies.mean();
    for (Column const& column : percentiles) {
        json[std::string(column.name) + "Ms"] = series.latencies.percentile(column.percent);
    }
    return json;
}

std::string row(char const* name, ReadSeries const& series) {
    char text[128];
    std::snprintf(text, sizeof(text), "  %-14s%8zu%8llu%10.2f", name, series.latencies.count(),
                  static_cast<unsigned long long>(series.failed), series.latencies.mean());
    std::string line = text;
    for (Column const& column : percentiles) {
        std::snprintf(text, sizeof(text), "%10.2f", series.latencies.percentile(column.percent));
        line += text;
    }
    return line + '\n';
}

std::string headRow() {
    char text[128];
    std::snprintf(text, sizeof(text), "%-16s%8s%8s%10s", "latency in ms", "frames", "failed", "mean");
    std::string line = text;
    for (Column const& column : percentiles) {
        std::snprintf(text, sizeof(text), "%10s", column.name);
        line += text;
    }
    return line + '\n';
}

std::uint64_t goodFrames(SharedReads const& shared) {
    return std::accumulate(shared.framesOfThread.begin(), shared.framesOfThread.end(), std::uint64_t(0));
}

double framesPerSecond(SharedReads const& shared) {
    return shared.seconds > 0.0 ? static_cast<double>(goodFrames(shared)) / shared.seconds : 0.0;
}

}  // namespace

std::uint64_t Measurements::failed() const {
    return first.failed + inOrder.failed + random.failed + shared.failed;
}

Measurements measure(Clip const& clip, FileReadInstance const& file, Clock::duration opening) {
    PlayFileMetadataRep const& metadata = *file.metadata;
    Target const target{clip.videoCookie(), metadata, nativeFormat(metadata)};
    Measurements result;
    readOne(result.first, target, 0, opening);
    std::vector<std::uint32_t> inOrder = firstFrames(metadata, mostInOrder);
    result.inOrder = readSeries("in order", target, inOrder);
    result.random = readSeries("random", target, randomFrames(metadata));
    inOrder.resize(result.inOrder.latencies.count());
    result.shared = readShared(target, inOrder);
    forgetFinishedReads();
    return result;
}

Json describeMeasurements(Measurements const& measurements) {
    Json json;
    json["firstFrame"] = describeSeries(measurements.first);
    json["inOrder"] = describeSeries(measurements.inOrder);
    json["random"] = describeSeries(measurements.random);
    Json& shared = json["threads"];
    shared["framesOfThread"] = measurements.shared.framesOfThread;
    shared["failed"] = measurements.shared.failed;
    shared["seconds"] = measurements.shared.seconds;
    shared["framesPerSecond"] = framesPerSecond(measurements.shared);
    return json;
}

std::string measurementTable(Measurements const& measurements) {
    std::string text = headRow() + row("open and first", measurements.first) +
                       row("in order", measurements.inOrder) + row("random", measurements.random);
    text += "frames served from " + std::to_string(sharingThreads) + " threads:";
    for (std::uint64_t const frames : measurements.shared.framesOfThread) {
        text += ' ' + std::to_string(frames);
    }
    char rate[64];
    std::snprintf(rate, sizeof(rate), ", %.1f frames a second", framesPerSecond(measurements.shared));
    return text + rate;
}

}  // namespace cli
