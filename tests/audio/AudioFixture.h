#pragma once

#include <memory>
#include <string>
#include <vector>

#include "audio/AudioReadRequest.h"
#include "gtest/gtest.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/ScriptedSound.h"

using AudioRequestPtr = Ox::Ptr<AudioReadRequest>;

/// What is wanted of a sound file.
struct WantedSound {
    std::uint32_t stream = 0;
    std::uint32_t channel = 0;
    std::uint64_t start = 0;
    std::uint32_t count = 100;
    /// Samples to fetch; 0 for `count`.
    std::uint32_t fetch = 0;
    RecordingIssuer* issuer = nullptr;
};

[[nodiscard]] AudioRequestPtr makeSoundRequest(Ox::Ptr<FileReadInstance> file, WantedSound const& wanted);

/// A sound file that is read on the test's own thread, and a log.
class SoundFixture : public ::testing::Test {
protected:
    using Bytes = std::vector<std::uint8_t>;
    using Reads = std::vector<SoundRead>;

    /// Makes the file, of that many streams.
    void open(std::vector<Aud::Metadata> const& formats);
    /// Reads, and gives the request as it ended.
    AudioRequestPtr read(WantedSound const& wanted);
    /// The bytes that a read came to.
    Bytes bytesRead(WantedSound const& wanted) { return bytesOf(read(wanted)->buffer); }

    SoundScriptPtr const script = std::make_shared<SoundScript>();
    Ox::Ptr<ScriptedSound> file;
    test::LogRecorder log;
};
