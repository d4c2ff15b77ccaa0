/// How many samples packets give, without decoding them, beside what decoding them gives.
#include <gtest/gtest.h>

#include "plugins/ffmpeg/FirstLook.h"
#include "plugins/ffmpeg/PacketLengths.h"
#include "plugins/ffmpeg/SoundContainer.h"
#include "tests/plugins_ffmpeg/Media.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;
using Lengths = std::vector<uint32_t>;

/// The packets of a medium's first stream of sound.
class SoundLengths : public ::testing::TestWithParam<std::string> {
protected:
    SoundLengths() {
        std::string error;
        EXPECT_TRUE(container_.open(medium(GetParam()), error)) << error;
        AvPtr<AVPacket> const packet = makePacket();
        while (container_.readPacket(*packet) >= 0) {
            packets_.emplace_back(av_packet_clone(packet.get()));
        }
    }
    [[nodiscard]] AVCodecParameters const& parameters() const {
        return *container_.streams().front()->codecpar;
    }
    [[nodiscard]] Lengths decoded() const {
        FirstLook look(parameters());
        Lengths lengths;
        for (AvPtr<AVPacket> const& packet : packets_) {
            lengths.push_back(look.take(*packet));
        }
        return lengths;
    }
    [[nodiscard]] Lengths told() const {
        PacketLengths lengths(parameters());
        Lengths all;
        for (AvPtr<AVPacket> const& packet : packets_) {
            all.push_back(lengths.of(*packet));
        }
        return all;
    }

    SoundContainer container_;
    std::vector<AvPtr<AVPacket>> packets_;
};

std::string nameOf(testing::TestParamInfo<std::string> const& file) {
    return testNameOf(file.param);
}

class SoundLengthsByHeader : public SoundLengths {};

TEST_P(SoundLengthsByHeader, AreThoseOfTheDecoder) {
    ASSERT_FALSE(packets_.empty());
    EXPECT_EQ(told(), decoded());
}

INSTANTIATE_TEST_SUITE_P(Files, SoundLengthsByHeader,
                         testing::Values("music.opus", "music-short-packets.opus", "music-opus.webm",
                                         "music.ogg", "music-vorbis.webm", "music-24.flac", "music-flac.ogg",
                                         "music-flac.mkv"),
                         nameOf);

class SoundLengthsThatAreFixed : public SoundLengths {};

TEST_P(SoundLengthsThatAreFixed, AreTheSameForEveryPacket) {
    ASSERT_EQ(lengthRuleOf(parameters().codec_id), eLengthRule::fixed);
    Lengths const lengths = decoded();
    EXPECT_EQ(lengths, Lengths(lengths.size(), lengths.front()));
}

INSTANTIATE_TEST_SUITE_P(Files, SoundLengthsThatAreFixed,
                         testing::Values("music-aac.aac", "music-aac.ts", "music-latm.ts", "music-128k.mp3",
                                         "music-8k.mp3", "music.mp2", "music.ac3", "music-eac3.mp4",
                                         "music.thd", "music.gsm"),
                         nameOf);

class SoundLengthsButTheLast : public SoundLengths {};

TEST_P(SoundLengthsButTheLast, AreTheSameForEveryPacketButTheLast) {
    ASSERT_EQ(lengthRuleOf(parameters().codec_id), eLengthRule::fixedButLast);
    Lengths lengths = decoded();
    EXPECT_LT(lengths.back(), lengths.front());
    lengths.pop_back();
    EXPECT_EQ(lengths, Lengths(lengths.size(), lengths.front()));
}

INSTANTIATE_TEST_SUITE_P(Files, SoundLengthsButTheLast, testing::Values("music-alac.m4a"), nameOf);

TEST(PacketLengths, AreMeasuredByDecodingWhereNothingElseIsKnown) {
    EXPECT_EQ(lengthRuleOf(AV_CODEC_ID_WMAV2), eLengthRule::byDecoding);
}

}  // namespace
}  // namespace test
