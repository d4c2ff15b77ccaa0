#include "tools/playfile/SampleSinks.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "toolkit/sound/SampleFormat.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::size_t sortedPieceBytes = 1U << 20;
/// Silence of unsigned samples lies in the middle.
constexpr std::uint8_t unsignedSilence = 128;

[[noreturn]] void refuseSorting(int errorNumber) {
    throw CommandError("cannot keep the samples in a temporary file: " + systemErrorText(errorNumber) +
                       "; make room, or read with --order forward");
}

}  // namespace

void SumSink::take(SampleFetcher::Samples const& samples) {
    Channel& channel = channels_[samples.channelIndex];
    channel.sum.add(samples.bytes, samples.byteCount);
    channel.byteCount += samples.byteCount;
}

SortingSink::SortingSink(std::vector<ChannelRange> const& ranges, iSampleSink& next)
    : next_(next), file_(std::tmpfile()) {
    if (!file_) {
        refuseSorting(errno);
    }
    std::uint64_t place = 0;
    for (ChannelRange const& range : ranges) {
        channels_.push_back({place, range.format.bytesPerSample, 0});
        place += range.count * range.format.bytesPerSample;
    }
}

void SortingSink::take(SampleFetcher::Samples const& samples) {
    Channel& channel = channels_[samples.channelIndex];
    std::uint64_t const begin = samples.offset * channel.bytesPerSample;
    std::size_t done = 0;
    while (done < samples.byteCount) {
        ssize_t const written =
            ::pwrite(::fileno(file_.get()), static_cast<char const*>(samples.bytes) + done,
                     samples.byteCount - done, static_cast<off_t>(channel.place + begin + done));
        if (written <= 0) {
            refuseSorting(written < 0 ? errno : ENOSPC);
        }
        done += static_cast<std::size_t>(written);
    }
    if (done != 0) {
        channel.byteCount = std::max(channel.byteCount, begin + done);
    }
}

void SortingSink::finish() {
    std::vector<char> piece(sortedPieceBytes);
    for (std::size_t index = 0; index < channels_.size(); ++index) {
        Channel const& channel = channels_[index];
        for (std::uint64_t done = 0; done < channel.byteCount;) {
            std::size_t const wanted = std::min<std::uint64_t>(piece.size(), channel.byteCount - done);
            ssize_t const read = ::pread(::fileno(file_.get()), piece.data(), wanted,
                                         static_cast<off_t>(channel.place + done));
            if (read <= 0) {
                refuseSorting(read < 0 ? errno : EIO);
            }
            next_.take(
                {index, done / channel.bytesPerSample, true, piece.data(), static_cast<std::size_t>(read)});
            done += static_cast<std::uint64_t>(read);
        }
    }
    next_.finish();
}

WavSink::WavSink(std::string const& path, std::vector<ChannelRange> const& ranges, std::uint32_t blockSamples)
    : channels_(ranges.size()),
      bytesPerSample_(ranges.front().format.bytesPerSample),
      silence_(ranges.front().format.sampleFormat == Aud::sampleU8 ? unsignedSilence : 0),
      count_(ranges.front().count),
      blockSamples_(blockSamples),
      file_(path, ranges.front().format, static_cast<std::uint32_t>(ranges.size()), count_) {}

void WavSink::take(SampleFetcher::Samples const& samples) {
    std::uint64_t const blockSamples = std::min<std::uint64_t>(blockSamples_, count_ - samples.offset);
    if (samples.channelIndex == 0) {
        block_.assign(blockSamples * channels_ * bytesPerSample_, silence_);
    }
    auto const* const from = static_cast<std::uint8_t const*>(samples.bytes);
    std::uint8_t* const to = block_.data() + samples.channelIndex * bytesPerSample_;
    std::size_t const step = channels_ * bytesPerSample_;
    for (std::size_t i = 0; i < samples.byteCount / bytesPerSample_; ++i) {
        std::memcpy(to + i * step, from + i * bytesPerSample_, bytesPerSample_);
    }
    if (samples.channelIndex + 1 == channels_) {
        file_.write(samples.offset, block_.data(), block_.size());
    }
}

}  // namespace cli
