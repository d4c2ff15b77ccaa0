/// Files that are opened for their pictures and their sound together.
#include "plugins/ffmpeg/FFmpegReader.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/SoundServerFixture.h"
#include "video/VideoReadRequest.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

class FFmpegReaderOfBoth : public SoundServerFixture {
protected:
    void openBoth(std::string const& name) {
        std::string error;
        both_ = FFmpegReader::open(fromUTF8(medium(name).c_str()), DecodeFormat(), OpenType::both, error);
        ASSERT_TRUE(both_) << error;
    }

    Ox::Ptr<FFmpegReader> both_;
};

TEST_F(FFmpegReaderOfBoth, ReadsItsPictures) {
    openBoth("prores-422-pcm.mov");
    Ox::Ptr<FileReadInstance> file = both_;
    Ox::Ptr<IndexInfoRep> none;
    auto request = Ox::makePtr<VideoReadRequest>(file, none, 5U, resultDecompressed, DecodeFormat(),
                                                 Ox::Ptr<ReadRequestIssuer::Proxy>());
    Ox::Ptr<FrameBufferRep> buffer;
    EXPECT_EQ(both_->readVideo(buffer, request), FileReadInstance::frameRead);
}

TEST_F(FFmpegReaderOfBoth, ReadsItsSound) {
    openBoth("prores-422-pcm.mov");
    open("prores-422-pcm.mov");
    std::string const alone = bytesOf(*read(1000, 100), 100);
    EXPECT_EQ(bytesOf(*readFrom(both_, 1000, 100), 100), alone);
}

TEST_F(FFmpegReaderOfBoth, DescribesBoth) {
    openBoth("prores-422-pcm.mov");
    EXPECT_EQ(both_->metadata->videoSampleCount, 50U);
    EXPECT_EQ(both_->metadata->audioSampleCount, 96000U);
    EXPECT_EQ(both_->metadata->audioInfoCount, 1U);
}

/// A file of pictures alone.
class FFmpegReaderWithoutSound : public FFmpegReaderOfBoth {
protected:
    FFmpegReaderWithoutSound() { openBoth("h264-one-frame.mp4"); }
};

TEST_F(FFmpegReaderWithoutSound, CountsNoSound) {
    EXPECT_EQ(both_->metadata->audioInfoCount, 0U);
}

TEST_F(FFmpegReaderWithoutSound, FailsARequestForSound) {
    EXPECT_EQ(readFrom(both_, 0, 100)->getRequestStatus(), requestFailed);
}

TEST_F(FFmpegReaderWithoutSound, TellsTheIssuerOnceThatARequestForSoundFailed) {
    RequestPtr const request = readFrom(both_, 0, 100);
    EXPECT_EQ(issuer_.only().status, requestFailed);
    EXPECT_EQ(issuer_.only().result, request);
}

TEST_F(FFmpegReaderWithoutSound, LogsARequestForSoundAsAReadErrorInOneLine) {
    LogRecorder const log;
    static_cast<void>(readFrom(both_, 0, 100));
    EXPECT_EQ(log.log(), LogRecorder::Lines{"** disk read error 0x0\n"});
}

}  // namespace
}  // namespace test
