/// The registry of audio decoders, and what is said of sound and of results in texts and numbers.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/fakes/ByteHolder.h"
#include "toolkit/plugins/AudioDecoderInfo.h"
#include "toolkit/services/ResourceText.h"
#include "toolkit/sound/SampleFormat.h"

namespace test {
namespace {

using Ox::AudioDecoderInfo;

/// A decoder that knows one codec, and remembers what it was asked.
class KnowsOne : public AudioDecoderInfo {
public:
    explicit KnowsOne(char const* codec) : codec_(codec) {}
    bool canDecode(Aud::Metadata const& metadata, Ox::Ptr<iMemHolder> const& configuration) override {
        configurationAsked = configuration;
        return metadata.codec == codec_;
    }
    Ox::Ptr<Ox::AudioCodecInstance> makeInstance(Aud::Metadata const&, Ox::Ptr<iMemHolder> const&) override {
        return {};
    }
    Ox::Ptr<iMemHolder> configurationAsked;

private:
    LightweightString<char> const codec_;
};

class AudioDecoders : public ::testing::Test {
protected:
    ~AudioDecoders() override {
        for (auto const& decoder : added_) {
            AudioDecoderInfo::remove(decoder);
        }
    }
    Ox::Ptr<KnowsOne> add(char const* codec, int priority) {
        auto decoder = Ox::makePtr<KnowsOne>(codec);
        EXPECT_TRUE(AudioDecoderInfo::add(decoder, priority));
        added_.push_back(decoder);
        return decoder;
    }
    std::vector<Ox::Ptr<AudioDecoderInfo>> decodersFor(char const* codec) {
        Aud::Metadata metadata;
        metadata.codec = codec;
        return AudioDecoderInfo::getDecodersFor(metadata, configuration);
    }
    Ox::Ptr<iMemHolder> configuration;

private:
    std::vector<Ox::Ptr<AudioDecoderInfo>> added_;
};

TEST_F(AudioDecoders, AreThoseThatCanDecodeTheStream) {
    auto const aac = add("aac", 100);
    add("mp3", 100);
    auto const found = decodersFor("aac");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0], aac);
    EXPECT_TRUE(decodersFor("vorbis").empty());
}

TEST_F(AudioDecoders, ComeByPriorityThenByArrival) {
    auto const third = add("aac", 100);
    auto const first = add("aac", 50);
    auto const fourth = add("aac", 100);
    auto const second = add("aac", 50);
    auto const found = decodersFor("aac");
    ASSERT_EQ(found.size(), 4U);
    EXPECT_EQ(found[0], first);
    EXPECT_EQ(found[1], second);
    EXPECT_EQ(found[2], third);
    EXPECT_EQ(found[3], fourth);
}

TEST_F(AudioDecoders, AreAskedWithTheConfiguration) {
    auto const decoder = add("aac", 100);
    configuration = Ox::makePtr<ByteHolder>(3);
    decodersFor("aac");
    EXPECT_EQ(decoder->configurationAsked, configuration);
}

TEST_F(AudioDecoders, AreTakenOnceAndOnlyIfTheyAreThere) {
    auto const decoder = add("aac", 100);
    EXPECT_FALSE(AudioDecoderInfo::add(decoder, 50));
    EXPECT_FALSE(AudioDecoderInfo::add({}, 50));
    EXPECT_EQ(decodersFor("aac").size(), 1U);
}

TEST_F(AudioDecoders, AreNotAskedOnceTheyAreRemoved) {
    auto const decoder = add("aac", 100);
    EXPECT_TRUE(AudioDecoderInfo::remove(decoder));
    EXPECT_FALSE(AudioDecoderInfo::remove(decoder));
    EXPECT_TRUE(decodersFor("aac").empty());
}

TEST_F(AudioDecoders, MayUseTheRegistryWhileTheyAreAsked) {
    class Adds : public KnowsOne {
    public:
        Adds() : KnowsOne("aac") {}
        bool canDecode(Aud::Metadata const& metadata, Ox::Ptr<iMemHolder> const& with) override {
            auto const other = Ox::makePtr<KnowsOne>("aac");
            AudioDecoderInfo::add(other, 1);
            AudioDecoderInfo::remove(other);
            return KnowsOne::canDecode(metadata, with);
        }
    };
    auto const decoder = Ox::makePtr<Adds>();
    AudioDecoderInfo::add(decoder, 100);
    EXPECT_EQ(decodersFor("aac").size(), 1U);
    AudioDecoderInfo::remove(decoder);
}

TEST(AudioCodecInstance, DecodesNeitherWayUnlessItIsTaught) {
    class Untaught : public Ox::AudioCodecInstance {
    public:
        bool decodesToStreams() override { return false; }
        unsigned int getPreRollFrames() override { return 0; }
    } instance;
    Ox::Ptr<ByteBufferImpl> output;
    Ox::Ptr<ByteBufferImpl> packet;
    Aud::StreamBufferList list;
    unsigned decoded = 4711;
    EXPECT_EQ(instance.decodeAudioBuffer(output, 1, packet, decoded, 0, 0), 4U);
    EXPECT_EQ(instance.decodeAudioStream(list, 1, packet, decoded, 0, 0), 4U);
    EXPECT_EQ(decoded, 4711U);
    instance.resetToStart();
    EXPECT_EQ(instance.status, Ox::AudioCodecInstance::ready);
}

TEST(AudioCodecInstance, NamesItselfByItsCodec) {
    class Named : public Ox::AudioCodecInstance {
    public:
        bool decodesToStreams() override { return false; }
        unsigned int getPreRollFrames() override { return 0; }
    } instance;
    instance.metadata.codec = "aac";
    EXPECT_EQ(instance.getDescription(), "aac");
    EXPECT_TRUE(instance.metadata.isAAC());
}

TEST(AudioMetadata, IsNeitherCompressedNorAACUnlessItIsTold) {
    Aud::Metadata metadata;
    EXPECT_FALSE(metadata.isCompressedFormat());
    EXPECT_FALSE(metadata.isAAC());
    metadata.codec = "AAC";
    EXPECT_FALSE(metadata.isAAC()) << "codecs are written in lower case";
}

TEST(SampleFormat, KnowsTheBytesAndNameOfEachForm) {
    struct Case {
        Aud::eSampleFormat format;
        std::uint32_t bytes;
        char const* name;
    };
    for (auto const& [format, bytes, name] : {Case{Aud::sampleUnknown, 0, "unknown"},
                                              {Aud::sampleU8, 1, "u8"},
                                              {Aud::sampleS16, 2, "s16"},
                                              {Aud::sampleS24, 3, "s24"},
                                              {Aud::sampleS32, 4, "s32"},
                                              {Aud::sampleF32, 4, "f32"},
                                              {Aud::sampleF64, 8, "f64"}}) {
        EXPECT_EQ(Aud::bytesPerSampleOf(format), bytes);
        EXPECT_STREQ(Aud::nameOf(format), name);
    }
    EXPECT_EQ(Aud::bytesPerSampleOf(7), 0U);
    EXPECT_EQ(Aud::bytesPerSampleOf(0xFFFFFFFF), 0U);
}

TEST(ResourceText, SaysEachCodeOfItsOwn) {
    std::set<std::string> texts;
    for (OxResult const code : {0U, 1U, 3U, 8U, 11U, 12U, 2000U, 2005U, 2059U, 2061U}) {
        std::string const text = resourceStr(code).str();
        EXPECT_FALSE(text.empty());
        EXPECT_EQ(text.find("result "), std::string::npos) << code;
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), 10U);
}

TEST(ResourceText, SaysTheNumberOfACodeThatHasNoText) {
    EXPECT_EQ(resourceStr(4711), "result 4711");
    EXPECT_EQ(resourceStr(0xFFFFFFFF), "result 4294967295");
}

TEST(ResourceText, IsTheSameInThePlainLayout) {
    EXPECT_EQ(resourceStr(2061, resourcePlain), resourceStr(2061));
}

}  // namespace
}  // namespace test
