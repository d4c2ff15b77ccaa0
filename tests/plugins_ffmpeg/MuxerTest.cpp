#include "plugins/ffmpeg/Muxer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plugins/ffmpeg/FrameFetcher.h"
#include "plugins/ffmpeg/VideoEncoder.h"
#include "tests/fakes/FullDisk.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/NumberedPicture.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int frameCount = 30;

class MuxerTest : public ::testing::Test {
protected:
    void open(std::string const& file, std::string const& format) {
        muxer_ = Muxer::open(folder_.name(file), format, error_);
    }
    /// Codes numbered pictures without a loss.
    void encode(std::string const& codec) {
        EncoderSettings settings;
        settings.codec = codec;
        settings.shape = {320, 180, AV_PIX_FMT_YUV420P};
        settings.options = losslessOptions(codec);
        encoder_ = VideoEncoder::open(settings, error_);
        ASSERT_TRUE(encoder_) << error_;
        for (int number = 0; number < frameCount; ++number) {
            ASSERT_TRUE(encoder_->encode(*numberedPicture(number, settings.shape), packets_, error_));
        }
        ASSERT_TRUE(encoder_->finish(packets_, error_)) << error_;
    }
    bool begin(AvOptions const& options = {}) {
        AvPtr<AVCodecParameters> const parameters = encoder_->parameters();
        stream_ = muxer_->addStream(*parameters, encoder_->timeBase(), encoder_->frameRate());
        return muxer_->begin(options, error_);
    }
    bool writeAll() {
        for (AvPtr<AVPacket> const& packet : packets_) {
            if (!muxer_->write(*packet, stream_, encoder_->timeBase(), error_)) {
                return false;
            }
        }
        return true;
    }
    void expectAllShown(std::string const& file) {
        std::unique_ptr<FrameFetcher> const fetcher = FrameFetcher::open(folder_.file(file), error_);
        ASSERT_TRUE(fetcher) << error_;
        ASSERT_EQ(fetcher->frameCount(), std::uint32_t(frameCount));
        EXPECT_EQ(av_cmp_q(fetcher->facts().frameRate, {25, 1}), 0);
        for (std::uint32_t frame = 0; frame < fetcher->frameCount(); ++frame) {
            EXPECT_EQ(numberOn(fetcher->fetch(frame).get()), static_cast<int>(frame));
        }
    }

    TemporaryFolder folder_;
    std::unique_ptr<Muxer> muxer_;
    std::unique_ptr<VideoEncoder> encoder_;
    Packets packets_;
    int stream_ = -1;
    std::string error_;
};

TEST_F(MuxerTest, MakesAWholeMovie) {
    open("a.mov", "mov");
    encode("libx264");
    ASSERT_TRUE(begin() && writeAll() && muxer_->finish(error_)) << error_;
    expectAllShown("a.mov");
}

TEST_F(MuxerTest, MakesAWholeMatroskaFile) {
    open("a.mkv", "matroska");
    encode("ffv1");
    ASSERT_TRUE(begin() && writeAll() && muxer_->finish(error_)) << error_;
    expectAllShown("a.mkv");
}

TEST_F(MuxerTest, MakesTheFoldersAboveTheFile) {
    open("one/two/a.mov", "mov");
    ASSERT_TRUE(muxer_) << error_;
    EXPECT_TRUE(folder_.holds("one/two/a.mov"));
}

TEST_F(MuxerTest, LeavesNoFileThatIsAbandoned) {
    open("a.mov", "mov");
    encode("ffv1");
    ASSERT_TRUE(begin() && writeAll());
    muxer_->abandon();
    EXPECT_FALSE(folder_.holds("a.mov"));
}

TEST_F(MuxerTest, LeavesNoFileThatNobodyFinished) {
    open("a.mov", "mov");
    encode("ffv1");
    ASSERT_TRUE(begin() && writeAll());
    muxer_ = nullptr;
    EXPECT_FALSE(folder_.holds("a.mov"));
}

TEST_F(MuxerTest, LeavesAFileThatWasFinished) {
    open("a.mov", "mov");
    encode("ffv1");
    ASSERT_TRUE(begin() && writeAll() && muxer_->finish(error_)) << error_;
    muxer_->abandon();
    muxer_ = nullptr;
    EXPECT_TRUE(folder_.holds("a.mov"));
}

TEST_F(MuxerTest, KeepsAFileOfFragmentsThatCanBeShown) {
    open("a.mov", "mov");
    encode("libx264");
    ASSERT_TRUE(begin({{"movflags", "empty_moov+frag_every_frame"}}) && writeAll());
    muxer_->keep();
    std::unique_ptr<FrameFetcher> const fetcher = FrameFetcher::open(folder_.file("a.mov"), error_);
    ASSERT_TRUE(fetcher) << error_;
    EXPECT_GE(fetcher->frameCount(), std::uint32_t(frameCount - 1));
}

TEST_F(MuxerTest, CannotEndAFileThatWasNotBegun) {
    open("a.mov", "mov");
    EXPECT_FALSE(muxer_->finish(error_));
    muxer_ = nullptr;
    EXPECT_FALSE(folder_.holds("a.mov"));
}

TEST_F(MuxerTest, NamesAFormatThatIsNotThere) {
    open("a.xyz", "no-such");
    EXPECT_FALSE(muxer_);
    EXPECT_EQ(error_, "this FFmpeg writes no files of the format \"no-such\"");
    EXPECT_FALSE(folder_.holds("a.xyz"));
}

TEST_F(MuxerTest, TellsOfAStreamThatTheContainerDoesNotTake) {
    open("a.mxf", "mxf");
    encode("ffv1");
    EXPECT_FALSE(begin());
    EXPECT_THAT(error_, ::testing::StartsWith("the format \"mxf\" doesn't take these streams: "));
}

TEST_F(MuxerTest, NamesAnOptionThatTheContainerDoesNotHave) {
    open("a.mov", "mov");
    encode("ffv1");
    EXPECT_FALSE(begin({{"no-such", "1"}}));
    EXPECT_EQ(error_, "the format \"mov\" has no option \"no-such\"");
}

TEST_F(MuxerTest, TellsOfAFolderThatIsAFile) {
    folder_.write("file", "");
    open("file/a.mov", "mov");
    EXPECT_FALSE(muxer_);
    EXPECT_EQ(error_, "File exists; choose another folder or name");
}

TEST_F(MuxerTest, TellsOfAFullDisk) {
    FullDisk const disk(10000);
    open("a.mov", "mov");
    encode("ffv1");
    EXPECT_FALSE(begin() && writeAll() && muxer_->finish(error_));
    EXPECT_NE(muxer_->result(), oxSuccess);
    EXPECT_FALSE(error_.empty());
}

TEST_F(MuxerTest, LeavesNoFileOnAFullDisk) {
    FullDisk const disk(10000);
    open("a.mov", "mov");
    encode("ffv1");
    EXPECT_FALSE(begin() && writeAll() && muxer_->finish(error_));
    muxer_ = nullptr;
    EXPECT_FALSE(folder_.holds("a.mov"));
}

}  // namespace
}  // namespace test
