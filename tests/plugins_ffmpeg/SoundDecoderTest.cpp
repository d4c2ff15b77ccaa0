/// A decoder of sound, what the first packets tell, and the container that they come from.
#include "plugins/ffmpeg/SoundDecoder.h"

#include <gtest/gtest.h>

#include "plugins/ffmpeg/FirstLook.h"
#include "plugins/ffmpeg/SoundContainer.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/SoundParts.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

/// The first packets of a medium.
class PacketsOfMedium {
public:
    explicit PacketsOfMedium(std::string const& name, size_t most = 12) {
        std::string error;
        EXPECT_TRUE(container_.open(medium(name), error)) << error;
        AvPtr<AVPacket> const packet = makePacket();
        while (packets_.size() < most && container_.readPacket(*packet) >= 0) {
            packets_.emplace_back(av_packet_clone(packet.get()));
        }
    }
    [[nodiscard]] AVPacket const& operator[](size_t number) const { return *packets_[number]; }
    [[nodiscard]] size_t size() const { return packets_.size(); }
    [[nodiscard]] AVCodecParameters const& parameters() const {
        return *container_.streams().front()->codecpar;
    }

private:
    SoundContainer container_;
    std::vector<AvPtr<AVPacket>> packets_;
};

/// All samples of the first channel that a packet gives, as bytes.
std::string samplesOf(SoundDecoder& decoder, AVPacket const& packet) {
    std::string bytes;
    decoder.feed(&packet);
    while (AVFrame const* const frame = decoder.receive()) {
        auto const size =
            static_cast<size_t>(frame->nb_samples) *
            static_cast<size_t>(av_get_bytes_per_sample(static_cast<AVSampleFormat>(frame->format)));
        bytes.append(reinterpret_cast<char const*>(frame->extended_data[0]), size);
    }
    return bytes;
}

std::unique_ptr<SoundDecoder> decoderOf(PacketsOfMedium const& packets) {
    std::string error;
    return SoundDecoder::open(packets.parameters(), error);
}

TEST(SoundDecoder, SaysThatThereIsNoneForAnUnknownCodec) {
    std::string error;
    EXPECT_FALSE(SoundDecoder::open(*parametersOf(AV_CODEC_ID_NONE), error));
    EXPECT_NE(error.find("no decoder"), std::string::npos);
}

TEST(SoundDecoder, GivesAllSamplesWhateverTheContainerWantsSkipped) {
    PacketsOfMedium const packets("music.opus");
    auto const decoder = decoderOf(packets);
    for (size_t number = 0; number < packets.size(); ++number) {
        EXPECT_EQ(samplesOf(*decoder, packets[number]).size(), 960 * sizeof(float)) << number;
    }
}

TEST(SoundDecoder, GivesTheSameAtTheFirstPacketAfterAnyOther) {
    PacketsOfMedium const packets("music-aac.mp4");
    auto const decoder = decoderOf(packets);
    std::string const first = samplesOf(*decoder, packets[0]);
    static_cast<void>(samplesOf(*decoder, packets[9]));
    decoder->restartAtFirstPacket();
    EXPECT_EQ(samplesOf(*decoder, packets[0]), first);
}

TEST(SoundDecoder, ForgetsEarlierPacketsByARestart) {
    PacketsOfMedium const packets("music.gsm");
    auto const decoder = decoderOf(packets);
    std::string const alone = samplesOf(*decoder, packets[5]);
    static_cast<void>(samplesOf(*decoder, packets[9]));
    decoder->restart();
    EXPECT_EQ(samplesOf(*decoder, packets[5]), alone);
}

TEST(SoundDecoder, RefusesAPacketWithoutBytesAndGoesOn) {
    PacketsOfMedium const packets("music-24.flac");
    auto const decoder = decoderOf(packets);
    EXPECT_FALSE(decoder->feed(makePacket().get()));
    EXPECT_FALSE(decoder->feed(std::span<uint8_t const>()));
    EXPECT_FALSE(samplesOf(*decoder, packets[0]).empty());
}

TEST(SoundDecoder, DecodesBareBytesLikeAPacket) {
    PacketsOfMedium const packets("music-24.flac");
    auto const decoder = decoderOf(packets);
    ASSERT_TRUE(decoder->feed(std::span(packets[0].data, static_cast<size_t>(packets[0].size))));
    EXPECT_EQ(decoder->receive()->nb_samples, 4608);
}

TEST(SoundDecoder, GivesTheSameNoiseHoweverOneCameThere) {
    PacketsOfMedium const packets("music.ac3");
    auto const decoder = decoderOf(packets);
    for (size_t number = 0; number < 8; ++number) {
        static_cast<void>(samplesOf(*decoder, packets[number]));
    }
    std::string const inOrder = samplesOf(*decoder, packets[8]);
    decoder->restart();
    static_cast<void>(samplesOf(*decoder, packets[7]));
    EXPECT_EQ(samplesOf(*decoder, packets[8]), inOrder);
}

TEST(FirstLook, TellsTheFormOfTheSamples) {
    PacketsOfMedium const packets("music-24.flac");
    FirstLook look(packets.parameters());
    look.take(packets[0]);
    EXPECT_EQ(look.form().form, Aud::sampleS32);
    EXPECT_EQ(look.form().bitsPerSample, 24);
    EXPECT_EQ(look.form().channels, 2);
    EXPECT_EQ(look.form().sampleRate, 48000);
}

TEST(FirstLook, TellsTheSamplesOfAPacket) {
    PacketsOfMedium const packets("music-128k.mp3");
    FirstLook look(packets.parameters());
    look.take(packets[0]);
    EXPECT_EQ(look.packetSamples(), 1152U);
}

TEST(FirstLook, TellsThePrimingThatTheContainerStates) {
    PacketsOfMedium const packets("music-aac.mp4");
    FirstLook look(packets.parameters());
    look.take(packets[0]);
    EXPECT_EQ(look.skip(), 1024);
}

TEST(FirstLook, TellsThePrimingThatOnlyTheDecoderKnows) {
    PacketsOfMedium const packets("music-opus.webm");
    FirstLook look(packets.parameters());
    look.take(packets[0]);
    EXPECT_EQ(look.skip(), 312);
}

TEST(FirstLook, GoesOnUntilAPacketGivesSamples) {
    PacketsOfMedium const packets("music.ogg");
    FirstLook look(packets.parameters());
    look.take(packets[0]);
    EXPECT_FALSE(look.isOver());
    look.take(packets[1]);
    EXPECT_TRUE(look.isOver());
}

TEST(FirstLook, EndsIfNoPacketGivesSamples) {
    FirstLook look(*parametersOf(AV_CODEC_ID_FLAC));
    AvPtr<AVPacket> const nonsense = packetOf("nonsense");
    for (int i = 0; i < 100 && !look.isOver(); ++i) {
        look.take(*nonsense);
    }
    EXPECT_TRUE(look.isOver());
    EXPECT_EQ(look.packetSamples(), 0U);
}

TEST(FirstLook, FallsBackOnWhatIsStated) {
    FirstLook const look(*parametersOf(AV_CODEC_ID_AAC, 6, 44100));
    EXPECT_EQ(look.form().form, Aud::sampleF32);
    EXPECT_EQ(look.form().channels, 6);
    EXPECT_EQ(look.form().sampleRate, 44100);
}

TEST(FirstLook, HasNoFormWithoutADecoder) {
    EXPECT_FALSE(FirstLook(*parametersOf(AV_CODEC_ID_NONE)).form().isReadable());
}

TEST(FirstLook, TellsWhatComesBehindTheLastPacket) {
    PacketsOfMedium const packets("music.wma");
    FirstLook look(packets.parameters());
    look.take(packets[0]);
    EXPECT_EQ(look.drain(), 2048U);
}

TEST(SoundContainer, HasAllStreamsOfSoundInTheirOrder) {
    SoundContainer container;
    std::string error;
    ASSERT_TRUE(container.open(medium("music-two-streams.mov"), error)) << error;
    ASSERT_EQ(container.streams().size(), 2U);
    EXPECT_EQ(container.streams()[0]->codecpar->codec_id, AV_CODEC_ID_PCM_S16LE);
    EXPECT_EQ(container.streams()[1]->codecpar->codec_id, AV_CODEC_ID_AAC);
}

TEST(SoundContainer, BringsNoPicture) {
    SoundContainer container;
    std::string error;
    ASSERT_TRUE(container.open(medium("pictures-and-music.ts"), error)) << error;
    AvPtr<AVPacket> const packet = makePacket();
    while (container.readPacket(*packet) >= 0) {
        ASSERT_EQ(packet->stream_index, container.streams()[0]->index);
    }
}

TEST(SoundContainer, BringsOnlyTheStreamThatIsKept) {
    SoundContainer container;
    std::string error;
    ASSERT_TRUE(container.open(medium("music-two-streams.mov"), error)) << error;
    container.keepOnly(*container.streams()[1]);
    AvPtr<AVPacket> const packet = makePacket();
    while (container.readPacket(*packet) >= 0) {
        ASSERT_EQ(packet->stream_index, container.streams()[1]->index);
    }
}

TEST(SoundContainer, TellsAPictureFromACover) {
    SoundContainer film;
    SoundContainer song;
    std::string error;
    ASSERT_TRUE(film.open(medium("pictures-and-music.ts"), error)) << error;
    ASSERT_TRUE(song.open(medium("tone-cover-art.mp3"), error)) << error;
    EXPECT_TRUE(film.hasPicture());
    EXPECT_FALSE(song.hasPicture());
}

TEST(SoundContainer, RefusesAFileWithoutSound) {
    SoundContainer container;
    std::string error;
    EXPECT_FALSE(container.open(medium("h264-one-frame.mp4"), error));
    EXPECT_EQ(error, "holds no sound");
}

TEST(SoundContainer, RefusesWhatIsNoMedium) {
    SoundContainer container;
    std::string error;
    EXPECT_FALSE(container.open(medium("text-named.mov"), error));
    EXPECT_NE(error.find("is in no known format"), std::string::npos);
}

}  // namespace
}  // namespace test
