/// How reads of an open file are served: by frames, once a packet, ahead in order, and no further at random.
#include "plugins/ffmpeg/SoundServer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "playfile/Counters.h"
#include "plugins/ffmpeg/Bundle.h"
#include "plugins/ffmpeg/FFmpegAudioDecoder.h"
#include "plugins/ffmpeg/SoundConfiguration.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/SoundServerFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

class SoundServerTest : public SoundServerFixture {
protected:
    [[nodiscard]] static std::uint64_t streamReads() { return playFileCounters().audioStreamReads.load(); }
};

TEST_F(SoundServerTest, DescribesAllStreams) {
    open("music-two-streams.mov");
    auto const& streams = reader_->metadata->audioStreams;
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_EQ(streams[0].codec.str(), "pcm_s16le");
    EXPECT_EQ(streams[0].sampleFormat, std::uint32_t{Aud::sampleS16});
    EXPECT_FALSE(streams[0].isCompressed);
    EXPECT_EQ(streams[1].codec.str(), "aac");
    EXPECT_EQ(streams[1].samplesPerCodecFrame, 1024U);
    EXPECT_TRUE(streams[1].isCompressed);
}

TEST_F(SoundServerTest, CountsStreamsAndSamples) {
    open("music-two-streams.mov");
    EXPECT_EQ(reader_->metadata->audioInfoCount, 2U);
    EXPECT_EQ(reader_->metadata->audioSampleCount, 240000U);
}

TEST_F(SoundServerTest, TellsWhatHasTheFileOpen) {
    open("music.opus");
    EXPECT_EQ(reader_->getDescription().str(), "opus in ogg");
}

TEST_F(SoundServerTest, ReadsStoredSamplesFromAnySample) {
    open("music-s16.mov");
    RequestPtr const whole = read(0, 5000);
    RequestPtr const part = read(1234, 100);
    EXPECT_EQ(bytesOf(*part, 100), bytesOf(*whole, 5000).substr(2468, 200));
}

TEST_F(SoundServerTest, ReadsCodedSamplesFromAnySample) {
    open("music-aac.mp4");
    RequestPtr const whole = read(0, 90'000);
    RequestPtr const part = read(81'234, 100);
    EXPECT_EQ(bytesOf(*part, 100), bytesOf(*whole, 90'000).substr(81'234 * 4, 400));
}

TEST_F(SoundServerTest, TellsTheIssuerWithTheStatusSet) {
    open("music-aac.mp4");
    static_cast<void>(read(0, 100));
    EXPECT_EQ(issuer_.only().status, requestComplete);
}

TEST_F(SoundServerTest, GivesAsManySamplesAsAreAskedForWhereAReadBeginsInAFrame) {
    open("music-aac.mp4");
    EXPECT_GE(samplesOf(*read(50'000, 5000)), 5000U);
}

TEST_F(SoundServerTest, DecodesNoMoreThanIsAskedForAfterAJump) {
    open("music-aac.mp4");
    EXPECT_LE(samplesOf(*read(50'000, 4096, 16384)), 4096U + 1024U);
}

TEST_F(SoundServerTest, CompletesARequestOfNoSamplesAtTheStartOfALaterFrame) {
    open("music-aac.mp4");
    EXPECT_EQ(read(50'176, 0)->getRequestStatus(), requestComplete);
}

TEST_F(SoundServerTest, DecodesAsFarAsTheLibraryAsksWhereItGoesOn) {
    open("music-aac.mp4");
    static_cast<void>(read(50'176, 4096, 16384));
    EXPECT_GE(samplesOf(*read(54'272, 4096, 16384)), 16384U - 1024U);
}

TEST_F(SoundServerTest, DecodesAsFarAsTheLibraryAsksFromTheStart) {
    open("music-24.flac");
    EXPECT_GE(samplesOf(*read(0, 4096, 36864)), 36864U);
}

TEST_F(SoundServerTest, DecodesSomeBlocksAheadWhereItGoesOn) {
    open("music-aac.mp4");
    static_cast<void>(read(0, 1920));
    static_cast<void>(read(1920, 1920));
    std::uint64_t const before = streamReads();
    static_cast<void>(read(3840, 1920));
    static_cast<void>(read(5760, 1920));
    EXPECT_EQ(streamReads(), before);
}

TEST_F(SoundServerTest, GivesTheSameWhenItComesBackToTheStart) {
    open("music-aac.mp4");
    std::string const first = bytesOf(*read(0, 4096), 4096);
    static_cast<void>(read(100'000, 4096));
    EXPECT_EQ(bytesOf(*read(0, 4096), 4096), first);
}

TEST_F(SoundServerTest, FailsReadsOfAStreamThatNothingDecodesAndServesTheOneBesideIt) {
    std::ifstream in(medium("music-two-streams.mov"), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    bytes.replace(bytes.find("sowt", bytes.rfind("moov")), 4, "zzzz");
    TemporaryFolder const folder;
    folder.write("half.mov", bytes);
    openFile(folder.file("half.mov"));
    EXPECT_EQ(read(0, 100, 0, 0)->getRequestStatus(), requestFailed);
    std::string const beside = bytesOf(*read(5000, 100, 0, 1), 100);
    open("music-two-streams.mov");
    EXPECT_EQ(beside, bytesOf(*read(5000, 100, 0, 1), 100));
}

TEST_F(SoundServerTest, GivesTheSameInOrderAsInOneRead) {
    for (char const* const name : {"music-aac.mp4", "music-128k.mp3", "music.opus", "music-24.flac"}) {
        open(name);
        auto const total = static_cast<std::uint32_t>(sampleCount());
        std::string const whole = bytesOf(*read(0, total), total);
        open(name);
        std::string inOrder;
        for (std::uint32_t first = 0; first < total; first += 1920) {
            std::uint32_t const count = std::min(1920U, total - first);
            inOrder += bytesOf(*read(first, count), count);
        }
        EXPECT_TRUE(inOrder == whole) << name;
    }
}

TEST_F(SoundServerTest, GivesTheSameAfterJumpsOutOfAReadingInOrder) {
    open("music-128k.mp3");
    auto const total = static_cast<std::uint32_t>(sampleCount());
    std::string const whole = bytesOf(*read(0, total), total);
    std::size_t const bytes = whole.size() / total;
    open("music-128k.mp3");
    for (std::uint32_t const start : {0U, 100'000U, 30'000U, 0U, 150'000U}) {
        for (std::uint32_t first = start; first < start + 20'000; first += 1000) {
            ASSERT_TRUE(bytesOf(*read(first, 1000), 1000) == whole.substr(first * bytes, 1000 * bytes))
                << first;
        }
    }
}

/// Hands out the plug-in's own decoders, and keeps the last one in sight.
class WatchedDecoders : public FFmpegAudioDecoderInfo {
public:
    [[nodiscard]] Ox::Ptr<Ox::AudioCodecInstance> makeInstance(
        Aud::Metadata const& metadata, Ox::Ptr<iMemHolder> const& configuration) override {
        Ox::Ptr<Ox::AudioCodecInstance> made = FFmpegAudioDecoderInfo::makeInstance(metadata, configuration);
        last_ = Ox::dynamicPtrCast<FFmpegAudioDecoder>(made);
        return made;
    }
    [[nodiscard]] std::uint64_t packetsFed() const { return last_->bundles().packetsFed(); }

private:
    Ox::Ptr<FFmpegAudioDecoder> last_;
};

/// A medium, and what the library fetches for a request of 4096 samples of it.
struct Played {
    char const* name;
    std::uint32_t fetch;
};

/// Playback from the first sample to the last, in requests of 4096 samples.
class SoundPlayback : public SoundServerTest, public ::testing::WithParamInterface<Played> {
protected:
    /// Before the plain ones.
    static WatchedDecoders& decoders() {
        static Ox::Ptr<WatchedDecoders> const watched = Ox::makePtr<WatchedDecoders>();
        static bool const isAdded = Ox::AudioDecoderInfo::add(watched, 50);
        EXPECT_TRUE(isAdded);
        return *watched;
    }

    void play() {
        for (std::uint64_t first = 0; first < sampleCount(); first += 4096) {
            auto const left = static_cast<std::uint32_t>(sampleCount() - first);
            RequestPtr const request = read(first, std::min(4096U, left), std::min(GetParam().fetch, left));
            ASSERT_EQ(request->getRequestStatus(), requestComplete);
        }
    }
    [[nodiscard]] static std::uint64_t packetsIn(std::string const& path) {
        std::string error;
        SoundContainer container;
        EXPECT_TRUE(container.open(path, error)) << error;
        AvPtr<AVPacket> const packet = makePacket();
        std::uint64_t count = 0;
        while (container.readPacket(*packet) >= 0) {
            ++count;
        }
        return count;
    }
};

TEST_P(SoundPlayback, DecodesEachPacketOnce) {
    WatchedDecoders const& decoders = SoundPlayback::decoders();
    open(GetParam().name);
    play();
    EXPECT_EQ(decoders.packetsFed(), packetsIn(medium(GetParam().name)));
}

INSTANTIATE_TEST_SUITE_P(Media, SoundPlayback,
                         ::testing::Values(Played{"music-aac.mp4", 16384}, Played{"music-128k.mp3", 36864},
                                           Played{"music.opus", 61440}, Played{"music.ogg", 16384},
                                           Played{"music-24.flac", 36864}, Played{"music.ac3", 12288}),
                         [](::testing::TestParamInfo<Played> const& played) {
                             return testNameOf(played.param.name);
                         });

/// Frames and packets as the library's part sees them.
class SoundServerFrames : public SoundServerTest {
protected:
    void openFrames(std::string const& name) {
        std::string error;
        server_ = std::make_unique<SoundServer>(streams_, SoundFile::open(medium(name), error));
    }
    OxResult readFrame(std::uint64_t frame) {
        packet_ = Ox::makePtr<ByteBufferImpl>(0U);
        unsigned int samplesRead = 0;
        unsigned int skipStart = 0;
        unsigned int skipEnd = 0;
        OxResult const result =
            server_->readAudioSamples(0, frame, 1, packet_, samplesRead, skipStart, skipEnd);
        EXPECT_EQ(skipStart + skipEnd, 0U);
        return result;
    }
    [[nodiscard]] std::int64_t frameSamples() const {
        Bundle bundle;
        EXPECT_TRUE(
            readBundle({static_cast<std::uint8_t const*>(packet_->getBuffer()), packet_->getUsed()}, bundle));
        return bundle.runs.front().count;
    }
    /// 240640 samples are 235 frames of 1024.
    static constexpr std::uint64_t framesOfAac = 235;

    std::vector<Aud::Metadata> streams_;
    std::unique_ptr<SoundServer> server_;
    Ox::Ptr<ByteBufferImpl> packet_;
};

TEST_F(SoundServerFrames, AreReadByTheirNumber) {
    openFrames("music-aac.mp4");
    ASSERT_EQ(readFrame(17), oxSuccess);
    EXPECT_EQ(frameSamples(), 1024);
}

TEST_F(SoundServerFrames, EndWithAShorterOne) {
    openFrames("music-32k.mp3");
    ASSERT_EQ(readFrame(220500 / 1152), oxSuccess);
    EXPECT_EQ(frameSamples(), 220500 % 1152);
}

TEST_F(SoundServerFrames, AreFollowedByNoMorePackets) {
    openFrames("music-aac.mp4");
    EXPECT_EQ(readFrame(framesOfAac - 1), oxSuccess);
    EXPECT_EQ(readFrame(framesOfAac), oxNoMorePackets);
    EXPECT_EQ(readFrame(1'000'000), oxNoMorePackets);
}

TEST_F(SoundServerFrames, AreNotReadByVideoSamples) {
    openFrames("music-aac.mp4");
    EXPECT_FALSE(server_->readsByVideoSamples());
}

TEST_F(SoundServerFrames, AreAppendedToWhatTheBufferHolds) {
    openFrames("music-s16.mov");
    packet_ = Ox::makePtr<ByteBufferImpl>(0U);
    packet_->append("abcd", 4);
    unsigned int samplesRead = 0;
    unsigned int unused = 0;
    ASSERT_EQ(server_->readAudioSamples(0, 0, 3, packet_, samplesRead, unused, unused), oxSuccess);
    EXPECT_EQ(samplesRead, 3U);
    EXPECT_EQ(packet_->getUsed(), 4U + 12U);
}

TEST_F(SoundServerFrames, OfStoredSamplesEndWithTheData) {
    openFrames("music-s16.mov");
    packet_ = Ox::makePtr<ByteBufferImpl>(0U);
    unsigned int samplesRead = 0;
    unsigned int unused = 0;
    EXPECT_EQ(server_->readAudioSamples(0, 239'999, 3, packet_, samplesRead, unused, unused), oxEndOfData);
    EXPECT_EQ(samplesRead, 1U);
}

/// The decoder as the library's registry hands it out.
class FFmpegAudioDecoderTest : public SoundServerFrames {
protected:
    FFmpegAudioDecoderTest() {
        std::string error;
        file_ = SoundFile::open(medium("music-aac.mp4"), error);
        SoundTrack const& track = file_->tracks()[0];
        instance_ = info_.makeInstance({}, Ox::makePtr<SoundConfiguration>(*track.parameters, track.form));
        openFrames("music-aac.mp4");
    }
    /// What a frame gives on both channels, behind what was there.
    std::string decode(std::uint64_t frame) {
        Aud::StreamBufferList list;
        Ox::AudioReader::createOutputBuffers(1, instance_->metadata, list);
        EXPECT_EQ(readFrame(frame), oxSuccess);
        unsigned int decoded = 0;
        EXPECT_EQ(instance_->decodeAudioStream(list, 1024, packet_, decoded, 0, 0),
                  Ox::AudioCodecInstance::good);
        EXPECT_EQ(decoded, 1024U);
        return {static_cast<char const*>(list[1].getBuffer()), list[1].getUsed()};
    }

    FFmpegAudioDecoderInfo info_;
    std::unique_ptr<SoundFile> file_;
    Ox::Ptr<Ox::AudioCodecInstance> instance_;
};

TEST_F(FFmpegAudioDecoderTest, IsReadyAndTellsItsForm) {
    ASSERT_TRUE(instance_);
    EXPECT_EQ(instance_->status, Ox::AudioCodecInstance::ready);
    EXPECT_EQ(instance_->metadata.sampleFormat, std::uint32_t{Aud::sampleF32});
    EXPECT_EQ(instance_->metadata.samplesPerCodecFrame, 1024U);
    EXPECT_TRUE(instance_->decodesToStreams());
}

TEST_F(FFmpegAudioDecoderTest, WantsNoFramesBeforeAPosition) {
    EXPECT_EQ(instance_->getPreRollFrames(), 0U);
}

TEST_F(FFmpegAudioDecoderTest, GivesTheSameWhenTheFirstFrameIsFedTwice) {
    std::string const first = decode(0);
    EXPECT_EQ(decode(0), first);
}

TEST_F(FFmpegAudioDecoderTest, GivesTheSameAfterAReset) {
    std::string const first = decode(0);
    static_cast<void>(decode(1));
    instance_->resetToStart();
    EXPECT_EQ(decode(0), first);
}

TEST_F(FFmpegAudioDecoderTest, GivesAFrameAgainThatItHasJustGiven) {
    static_cast<void>(decode(20));
    std::string const inOrder = decode(21);
    EXPECT_EQ(decode(21), inOrder);
}

TEST_F(FFmpegAudioDecoderTest, RefusesWhatIsNoBundle) {
    Aud::StreamBufferList list;
    Ox::AudioReader::createOutputBuffers(1, instance_->metadata, list);
    auto packet = Ox::makePtr<ByteBufferImpl>(0U);
    packet->append("nonsense", 8);
    unsigned int decoded = 0;
    EXPECT_EQ(instance_->decodeAudioStream(list, 1024, packet, decoded, 0, 0),
              Ox::AudioCodecInstance::needsMore);
    EXPECT_EQ(decoded, 0U);
    EXPECT_EQ(list[0].getUsed(), 0U);
}

TEST_F(FFmpegAudioDecoderTest, IsOnlyMadeForStreamsThatWereOpenedHere) {
    Ox::Ptr<iMemHolder> const other = Ox::makePtr<ByteBufferImpl>(16U);
    EXPECT_FALSE(info_.canDecode({}, other));
    EXPECT_FALSE(info_.canDecode({}, {}));
    EXPECT_FALSE(info_.makeInstance({}, other));
}

TEST_F(FFmpegAudioDecoderTest, TakesTheCodecsPartOfTheHeaderForItsConfiguration) {
    SoundTrack const& track = file_->tracks()[0];
    Ox::Ptr<iMemHolder> const configuration = Ox::makePtr<SoundConfiguration>(*track.parameters, track.form);
    EXPECT_TRUE(info_.canDecode({}, configuration));
    EXPECT_EQ(configuration->getUsed(), static_cast<std::uint32_t>(track.parameters->extradata_size));
}

}  // namespace
}  // namespace test
