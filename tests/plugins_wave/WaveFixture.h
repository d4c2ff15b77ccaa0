#pragma once

#include <string>

#include "gtest/gtest.h"
#include "plugins/wave/WaveReader.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WaveMaker.h"

/// Files that a test makes, opened by the reader itself, without a cache or a queue around it.
class WaveFixture : public ::testing::Test {
protected:
    /// Makes the file that the other verbs are about, and opens it.
    void open(std::string const& bytes);
    /// Opens the file as it is now.
    void openAgain();
    /// The same, and demands that it can be read.
    void openGood(std::string const& bytes);

    /// One read of all channels.
    struct Block {
        OxResult result = oxFailure;
        unsigned int samplesRead = 0;
        std::string bytes;
    };
    Block readBlock(std::uint64_t first, std::uint32_t count);

    /// One channel of a request, which the reader reads here and now; `status` says how it ended.
    std::string readChannel(std::uint32_t channel, std::uint64_t first, std::uint32_t count);

    /// What the log says of the file, without the name; the lines of the console count, too.
    [[nodiscard]] std::string complaint() const;
    [[nodiscard]] std::string text(char const* key) const;

    [[nodiscard]] Aud::Metadata const& stream() const { return reader->metadata->audioStreams.front(); }
    [[nodiscard]] std::uint64_t sampleCount() const { return reader->metadata->audioSampleCount; }
    [[nodiscard]] std::string path() const { return folder.file(fileName); }

    static constexpr char const* fileName = "sound.wav";

    test::TemporaryFolder folder;
    test::LogRecorder log;
    Ox::Ptr<playfile_wave::WaveReader> reader;
    RequestStatus status = requestBuilt;
};
