#pragma once

#include <cstdio>
#include <memory>
#include <vector>

#include "tools/playfile/Md5.h"
#include "tools/playfile/SampleFetcher.h"
#include "tools/playfile/WavFile.h"

namespace cli {

/// What is done with the samples of a fetch.
///
/// Threads  One at a time.
class iSampleSink {
public:
    virtual ~iSampleSink() = default;
    virtual void take(SampleFetcher::Samples const& samples) = 0;
    /// Called once all are there.
    virtual void finish() {}
};

/// Sums each channel up, as its samples come in order.
class SumSink : public iSampleSink {
public:
    struct Channel {
        Md5 sum;
        std::uint64_t byteCount = 0;
    };

    explicit SumSink(std::size_t channels) : channels_(channels) {}
    void take(SampleFetcher::Samples const& samples) override;
    [[nodiscard]] std::vector<Channel>& channels() { return channels_; }

private:
    std::vector<Channel> channels_;
};

/// Keeps the samples that come in any order in a nameless file, and hands them to another sink in theirs.
class SortingSink : public iSampleSink {
public:
    /// @throws CommandError  if there is no room for the file
    SortingSink(std::vector<ChannelRange> const& ranges, iSampleSink& next);
    void take(SampleFetcher::Samples const& samples) override;
    void finish() override;

private:
    struct CloseFile {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };
    struct Channel {
        std::uint64_t place = 0;
        std::uint32_t bytesPerSample = 0;
        std::uint64_t byteCount = 0;
    };

    iSampleSink& next_;
    std::unique_ptr<std::FILE, CloseFile> const file_;
    std::vector<Channel> channels_;
};

/// Writes the channels into a WAVE file, silence where a channel ends early or can't be read.
class WavSink : public iSampleSink {
public:
    /// @param ranges  of one format and length
    WavSink(std::string const& path, std::vector<ChannelRange> const& ranges, std::uint32_t blockSamples);
    void take(SampleFetcher::Samples const& samples) override;
    void finish() override { file_.finish(); }

private:
    std::size_t const channels_;
    std::uint32_t const bytesPerSample_;
    std::uint8_t const silence_;
    std::uint64_t const count_;
    std::uint32_t const blockSamples_;
    WavFile file_;
    /// One block, interleaved.
    std::vector<std::uint8_t> block_;
};

}  // namespace cli
