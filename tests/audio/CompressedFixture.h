#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "tests/audio/AudioFixture.h"
#include "tests/fakes/ScriptedDecoder.h"

/// A file of packets with a decoder that does as it is told: frames of 100 samples of 16 bits.
class CompressedFixture : public SoundFixture {
protected:
    using Lines = CallLog::Lines;
    static constexpr unsigned frameSize = 100;
    static constexpr std::uint64_t packetCount = 1000;

    explicit CompressedFixture(bool decodesToStreams);

    /// Opens the file and gives its stream the decoder, whose record is then empty.
    void openWithDecoder(unsigned channels = 2);
    /// Reads from a frame on, whole frames.
    AudioRequestPtr readFrames(std::uint64_t first, unsigned count = 1, RecordingIssuer* issuer = nullptr) {
        return read({.start = first * frameSize, .count = count * frameSize, .issuer = issuer});
    }
    /// What the decoder was asked by a read of whole frames.
    Lines callsOf(std::uint64_t first, unsigned count = 1);
    /// The decoder gives these numbers of samples, one after the other, and whole frames afterwards.
    void decode(std::vector<unsigned> const& counts);
    /// The log after a read that failed with that code.
    static test::LogRecorder::Lines diskError(OxResult code);

    /// What single packets come with instead of the rule.
    std::map<std::uint64_t, SoundAnswer> packets;
    DecoderScriptPtr const decoder = std::make_shared<DecoderScript>();
};

/// The samples of a channel of whole frames, as a decoder puts them out.
[[nodiscard]] std::vector<std::uint16_t> decodedFrames(std::uint64_t first, unsigned count, unsigned channel);
/// The used bytes of a holder as samples.
[[nodiscard]] std::vector<std::uint16_t> samplesOf(iMemHolder const& holder);
/// What lies behind the used bytes of a holder.
[[nodiscard]] std::vector<std::uint8_t> bytesBehind(iMemHolder const& holder);
