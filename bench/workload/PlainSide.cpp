#include "bench/workload/PlainSide.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "bench/support/Footprint.h"
#include "bench/support/PlainLoop.h"

extern "C" {
#include <libavutil/log.h>
}

namespace bench {
namespace {

/// Decoding the same frame again and again tells nothing new after a few times.
constexpr std::size_t mostRepeats = 10;

std::uint32_t readInOrder(PlainLoop& loop, std::size_t count) {
    std::uint32_t read = 0;
    while (read < count && loop.next()) {
        ++read;
    }
    return read;
}

std::uint32_t readBySeeking(PlainLoop& loop, std::vector<std::uint32_t> const& frames, std::size_t count) {
    return static_cast<std::uint32_t>(
        std::count_if(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(count),
                      [&](std::uint32_t frame) { return loop.frameAt(frame) != nullptr; }));
}

/// A picture of each loop in turn.
std::uint32_t readInTurn(std::vector<std::unique_ptr<PlainLoop>> const& loops, std::size_t count) {
    std::uint32_t read = 0;
    for (std::size_t i = 0; i < count; ++i) {
        for (auto const& loop : loops) {
            read += loop->next() != nullptr ? 1 : 0;
        }
    }
    return read;
}

std::uint32_t readCase(PlainLoop& loop, std::string const& path, eCase which,
                       std::vector<std::uint32_t> const& frames, std::size_t count) {
    switch (which) {
        case eCase::inOrder:
            return readInOrder(loop, count);
        case eCase::openAndFirst:
            return loop.open(path) ? readInOrder(loop, count) : 0;
        default:
            return readBySeeking(loop, frames, count);
    }
}

/// Counts as good what has read all that was wanted.
void measure(Sample& sample, std::size_t wanted, std::function<std::uint32_t()> const& work) {
    watchWork(sample, [&] {
        sample.reads = work();
        return sample.reads == wanted;
    });
    sample.peakBytes = peakResidentBytes();
    lookAfterRest(sample);
}

/// Several loops on one file, each at its place; they are open, and stand there, before the time runs.
Sample runLoops(std::string const& path, eCase which, std::size_t count) {
    Sample sample;
    std::vector<std::unique_ptr<PlainLoop>> loops;
    std::size_t const loopCount = placesOf(which);
    for (std::size_t i = 0; i < loopCount; ++i) {
        loops.push_back(std::make_unique<PlainLoop>());
        if (!loops.back()->open(path)) {
            return sample;
        }
        if (which == eCase::twoReaders && i > 0 && count > 0) {
            loops.back()->frameAt(static_cast<std::uint32_t>(i * count) - 1);
        }
    }
    measure(sample, count * loopCount, [&] { return readInTurn(loops, count); });
    return sample;
}

/// Looks at the packets of the beginning.
std::uint32_t framesPerKeyOf(AVFormatContext& file, int stream) {
    constexpr std::uint32_t mostPackets = 1000;
    std::uint32_t packets = 0;
    std::uint32_t keys = 0;
    AVPacket* const packet = av_packet_alloc();
    while (packets < mostPackets && av_read_frame(&file, packet) >= 0) {
        if (packet->stream_index == stream) {
            ++packets;
            keys += (packet->flags & AV_PKT_FLAG_KEY) != 0 ? 1 : 0;
        }
        av_packet_unref(packet);
    }
    AVPacket* owned = packet;
    av_packet_free(&owned);
    return keys == 0 ? 0 : packets / keys;
}

}  // namespace

Sample runPlain(std::string const& path, eCase which, std::vector<std::uint32_t> const& frames) {
    av_log_set_level(AV_LOG_QUIET);
    if (which == eCase::twoReaders || which == eCase::interleaved) {
        return runLoops(path, which, frames.size());
    }
    Sample sample;
    PlainLoop loop;
    if (which != eCase::openAndFirst && !loop.open(path)) {
        return sample;
    }
    std::size_t const wanted =
        which == eCase::heldAgain ? std::min(frames.size(), mostRepeats) : frames.size();
    measure(sample, wanted, [&] { return readCase(loop, path, which, frames, wanted); });
    return sample;
}

Sample runPlainBin(std::vector<std::string> const& paths) {
    av_log_set_level(AV_LOG_QUIET);
    Sample sample;
    std::vector<std::unique_ptr<PlainLoop>> loops;
    measure(sample, paths.size(), [&] {
        std::uint32_t read = 0;
        for (std::string const& path : paths) {
            loops.push_back(std::make_unique<PlainLoop>());
            read += loops.back()->open(path) && loops.back()->next() != nullptr ? 1 : 0;
        }
        return read;
    });
    return sample;
}

ClipFacts lookAt(std::string const& path) {
    av_log_set_level(AV_LOG_QUIET);
    ClipFacts facts;
    AVFormatContext* file = nullptr;
    if (avformat_open_input(&file, path.c_str(), nullptr, nullptr) < 0) {
        return facts;
    }
    avformat_find_stream_info(file, nullptr);
    int const stream = av_find_best_stream(file, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (stream >= 0) {
        AVCodecParameters const& parameters = *file->streams[stream]->codecpar;
        AVCodecDescriptor const* const codec = avcodec_descriptor_get(parameters.codec_id);
        facts.isGood = true;
        facts.width = static_cast<std::uint32_t>(parameters.width);
        facts.height = static_cast<std::uint32_t>(parameters.height);
        facts.framesPerKey = framesPerKeyOf(*file, stream);
        facts.isIntraOnly = codec && (codec->props & AV_CODEC_PROP_INTRA_ONLY) != 0;
        std::snprintf(facts.codec, sizeof facts.codec, "%s", avcodec_get_name(parameters.codec_id));
        std::snprintf(facts.container, sizeof facts.container, "%s", file->iformat->name);
    }
    avformat_close_input(&file);
    return facts;
}

}  // namespace bench
