/// What opening finds out of a file's streams of sound, and how they are read then.
#include "plugins/ffmpeg/SoundFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "plugins/ffmpeg/SoundOpener.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/MovBoxes.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

std::unique_ptr<SoundFile> open(std::string const& path) {
    std::string error;
    std::unique_ptr<SoundFile> file = SoundFile::open(path, error);
    EXPECT_TRUE(file) << error;
    return file;
}

/// The plan of a medium's first stream.
SoundPlan planOf(std::string const& name) {
    std::string error;
    ByteFile file;
    SoundContainer container;
    EXPECT_TRUE(file.open(medium(name), error) && container.open(medium(name), error)) << error;
    std::vector<SoundPlan> plans = planSound(container, file, medium(name));
    return std::move(plans.at(0));
}

TEST(SoundOpener, TakesSamplesThatFillAFileAsOnePiece) {
    for (char const* const name : {"tone.wav", "music-s8.aiff", "music-mulaw.au", "music-f64be.caf"}) {
        EXPECT_EQ(planOf(name).extents.size(), 1U) << name;
    }
}

TEST(SoundOpener, FindsTheEndOfSamplesWhoseLengthIsNotStated) {
    EXPECT_EQ(planOf("noise-s16-2ch-streamed.wav").kept.count(), 96000);
}

TEST(SoundOpener, KnowsWhereSamplesLieInAMovie) {
    SoundPlan const plan = planOf("prores-422-pcm.mov");
    EXPECT_TRUE(plan.pcm);
    EXPECT_GT(plan.extents.size(), 1U);
    EXPECT_TRUE(plan.traces.empty());
}

TEST(SoundOpener, KnowsWhereSamplesLieInOtherContainers) {
    for (char const* const name :
         {"music-s24.mkv", "music-f32.avi", "music-u16be.nut", "pictures-and-music.mxf"}) {
        EXPECT_TRUE(planOf(name).pcm) << name;
    }
}

TEST(SoundOpener, KnowsWherePacketsLieInAFile) {
    for (char const* const name :
         {"music-aac.mp4", "music-aac-fragmented.mp4", "music-aac.mkv", "music-128k.mp3", "music-mp3.avi",
          "music-24.flac", "music-vorbis.webm", "music.ac3"}) {
        EXPECT_TRUE(planOf(name).traces.empty()) << name;
    }
}

TEST(SoundOpener, RemembersPacketsThatTheContainerMustBringAgain) {
    for (char const* const name : {"music-aac.ts", "music-302m.ts", "pictures-and-music.dv"}) {
        SoundPlan const plan = planOf(name);
        EXPECT_EQ(plan.traces.size(), plan.packets.size()) << name;
        EXPECT_FALSE(plan.traces.empty()) << name;
    }
}

TEST(SoundOpener, MarksWhereDecodingMayBegin) {
    std::vector<bool> const isStart = planOf("music.thd").isStart;
    ASSERT_GT(isStart.size(), 16U);
    EXPECT_TRUE(isStart[0]);
    EXPECT_FALSE(isStart[1]);
}

TEST(SoundOpener, MarksWhereABlockOfSamplesBeginsOnADvd) {
    std::vector<bool> const isStart = planOf("music-dvd.vob").isStart;
    EXPECT_TRUE(isStart[0]);
    EXPECT_NE(std::find(isStart.begin(), isStart.end(), false), isStart.end());
}

TEST(SoundFile, HandsOverFramesOfTheCodecsOwnSize) {
    EXPECT_EQ(open(medium("music-aac.mp4"))->tracks()[0].form.frameSamples, 1024U);
    EXPECT_EQ(open(medium("music-128k.mp3"))->tracks()[0].form.frameSamples, 1152U);
    EXPECT_EQ(open(medium("music.opus"))->tracks()[0].form.frameSamples, 960U);
    EXPECT_EQ(open(medium("music.ac3"))->tracks()[0].form.frameSamples, 1536U);
    EXPECT_EQ(open(medium("music-24.flac"))->tracks()[0].form.frameSamples, 4608U);
}

TEST(SoundFile, HandsOverFramesOfAUsualSizeWhereTheCodecHasNone) {
    EXPECT_EQ(open(medium("music.ogg"))->tracks()[0].form.frameSamples, 1024U);
    EXPECT_EQ(open(medium("music.thd"))->tracks()[0].form.frameSamples, 1024U);
    EXPECT_EQ(open(medium("music.tta"))->tracks()[0].form.frameSamples, 4096U);
}

TEST(SoundFile, HasNoFramesWhereSamplesLieInTheFile) {
    EXPECT_EQ(open(medium("music-s24be-6ch.mov"))->tracks()[0].form.frameSamples, 0U);
}

TEST(SoundFile, TellsCompressedFromStoredSound) {
    EXPECT_TRUE(open(medium("music-24.flac"))->tracks()[0].form.isCompressed);
    EXPECT_FALSE(open(medium("music-302m.ts"))->tracks()[0].form.isCompressed);
}

TEST(SoundFile, LastsAsLongAsItsLongestStream) {
    auto const file = open(medium("music-two-streams.mov"));
    EXPECT_EQ(file->sampleCount(),
              std::max(file->tracks()[0].sampleCount(), file->tracks()[1].sampleCount()));
    EXPECT_NE(file->tracks()[0].sampleCount(), file->tracks()[1].sampleCount());
}

TEST(SoundFile, LeavesOutThePriming) {
    EXPECT_EQ(open(medium("music-128k.mp3"))->sampleCount(), 5 * 44100);
    EXPECT_EQ(open(medium("music.opus"))->sampleCount(), 5 * 48000);
}

TEST(SoundFile, RefusesAFileThatIsNotThere) {
    std::string error;
    EXPECT_FALSE(SoundFile::open("/nowhere", error));
    EXPECT_FALSE(error.empty());
}

TEST(SoundFile, RefusesAFileWithoutSound) {
    std::string error;
    EXPECT_FALSE(SoundFile::open(medium("h264-one-frame.mp4"), error));
    EXPECT_EQ(error, "holds no sound");
}

/// A medium, changed.
class ChangedSoundFile : public ::testing::Test {
protected:
    [[nodiscard]] static std::string bytesOf(std::string const& name) {
        std::ifstream in(medium(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void open(std::string const& bytes) {
        folder_.write("changed", bytes);
        file_ = SoundFile::open(folder_.file("changed"), error_);
    }

    TemporaryFolder folder_;
    std::unique_ptr<SoundFile> file_;
    std::string error_;
};

TEST_F(ChangedSoundFile, IsRefusedIfItsSamplesLieInAnother) {
    open(referringElsewhere(bytesOf("music-s16.mov")));
    EXPECT_FALSE(file_);
    EXPECT_EQ(error_, "names another file that holds its sound");
}

TEST_F(ChangedSoundFile, IsRefusedIfItsPacketsLieInAnother) {
    open(referringElsewhere(bytesOf("music-aac.mp4")));
    EXPECT_EQ(error_, "names another file that holds its sound");
}

TEST_F(ChangedSoundFile, KeepsAStreamOfItsOwnBesideOneThatLiesInAnother) {
    open(referringElsewhere(bytesOf("music-two-streams.mov")));
    ASSERT_TRUE(file_) << error_;
    ASSERT_EQ(file_->tracks().size(), 2U);
    EXPECT_FALSE(file_->tracks()[0].form.isReadable());
    EXPECT_TRUE(file_->tracks()[1].form.isReadable());
}

TEST_F(ChangedSoundFile, KeepsAStreamBesideOneThatNothingDecodes) {
    std::string bytes = bytesOf("music-two-streams.mov");
    bytes.replace(bytes.find("sowt", bytes.rfind("moov")), 4, "zzzz");
    open(bytes);
    ASSERT_TRUE(file_) << error_;
    ASSERT_EQ(file_->tracks().size(), 2U);
    EXPECT_FALSE(file_->tracks()[0].form.isReadable());
    EXPECT_TRUE(file_->tracks()[1].form.isReadable());
}

}  // namespace
}  // namespace test
