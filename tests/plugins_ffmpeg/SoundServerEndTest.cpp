/// What reads give at the end of a stream, and behind it.
#include "plugins/ffmpeg/SoundFile.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/SoundServerFixture.h"
#include "toolkit/services/Settings.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;
using SoundServerEndTest = SoundServerFixture;

TEST_F(SoundServerEndTest, GivesTheWholeEndWhereTheReadIsClippedThere) {
    open("music-aac.mp4");
    for (std::uint32_t left = 1; left < 3000; left += 97) {
        ASSERT_EQ(samplesOf(*read(sampleCount() - left, left)), left);
    }
}

TEST_F(SoundServerEndTest, GivesStoredSamplesUpToTheEnd) {
    open("music-s16.mov");
    RequestPtr const request = read(sampleCount() - 10, 100);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(samplesOf(*request), 10U);
}

TEST_F(SoundServerEndTest, CompletesAReadBehindTheEndOfAShorterStreamWithoutSamples) {
    open("music-two-streams.mov");
    RequestPtr const request = read(230'000, 100, 0, 1);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->getUsed(), 0U);
    EXPECT_EQ(issuer_.only().status, requestComplete);
}

TEST_F(SoundServerEndTest, GivesSilenceBehindTheEndOfAShorterStreamThatIsNotPlayed) {
    setConfigInt("NumAudioStreamsToPlay", 1);
    open("music-two-streams.mov");
    RequestPtr const request = read(230'000, 100, 0, 1);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(bytesOf(*request, 100), std::string(400, '\0'));
}

TEST_F(SoundServerEndTest, FailsAReadBehindTheEndOfAShorterStreamThatNothingDecodes) {
    removeDecoder();
    open("music-two-streams.mov");
    EXPECT_EQ(read(230'000, 100, 0, 1)->getRequestStatus(), requestFailed);
}

TEST_F(SoundServerEndTest, GivesWhatThereIsOfAReadOverTheEndOfAShorterStream) {
    open("music-two-streams.mov");
    std::string error;
    auto const file = SoundFile::open(medium("music-two-streams.mov"), error);
    auto const left = static_cast<std::uint32_t>(file->tracks()[1].sampleCount() - 220'000);
    RequestPtr const request = read(220'000, 10'000, 0, 1);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(samplesOf(*request), left);
}

}  // namespace
}  // namespace test
