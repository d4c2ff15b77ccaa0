#include "tests/audio/CompressedFixture.h"

#include <cstdio>
#include <cstring>

CompressedFixture::CompressedFixture(bool decodesToStreams) {
    decoder->decodesToStreams = decodesToStreams;
    script->packetCount = packetCount;
    script->answer = [this](SoundRead const& asked) {
        auto const special = packets.find(asked.sample);
        if (special != packets.end()) {
            return special->second;
        }
        return SoundAnswer{.result = asked.sample < packetCount ? oxSuccess : oxNoMorePackets};
    };
}

void CompressedFixture::openWithDecoder(unsigned channels) {
    decoder->metadata = compressedFormat(channels, frameSize);
    open({compressedFormat(channels, frameSize)});
    ScriptedDecoderInfo const info(decoder);
    EXPECT_EQ(file->initAudioCodec(0, nullptr), 5U);
    decoder->calls->clear();
}

CompressedFixture::Lines CompressedFixture::callsOf(std::uint64_t first, unsigned count) {
    decoder->calls->clear();
    readFrames(first, count);
    return decoder->calls->all();
}

void CompressedFixture::decode(std::vector<unsigned> const& counts) {
    decoder->answer = [counts, call = std::size_t{0}](DecodeCall const&) mutable {
        unsigned const decoded = call < counts.size() ? counts[call] : frameSize;
        ++call;
        return DecodeAnswer{.decoded = decoded};
    };
}

test::LogRecorder::Lines CompressedFixture::diskError(OxResult code) {
    char line[64];
    std::snprintf(line, sizeof line, "** disk read error 0x%x\n", code);
    return {line};
}

std::vector<std::uint16_t> decodedFrames(std::uint64_t first, unsigned count, unsigned channel) {
    std::vector<std::uint16_t> samples;
    for (unsigned frame = 0; frame < count; ++frame) {
        for (unsigned i = 0; i < 100; ++i) {
            samples.push_back(decodedSample(first + frame, channel, i));
        }
    }
    return samples;
}

std::vector<std::uint16_t> samplesOf(iMemHolder const& holder) {
    std::vector<std::uint16_t> samples(holder.getUsed() / sizeof(std::uint16_t));
    if (!samples.empty()) {
        std::memcpy(samples.data(), holder.getBuffer(), samples.size() * sizeof(std::uint16_t));
    }
    return samples;
}

std::vector<std::uint8_t> bytesBehind(iMemHolder const& holder) {
    auto const* const first = static_cast<std::uint8_t const*>(holder.getBuffer());
    return {first + holder.getUsed(), first + holder.getSize()};
}
