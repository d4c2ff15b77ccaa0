#include "plugins/ffmpeg/VideoEncoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/NumberedPicture.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int frameCount = 12;

class VideoEncoderTest : public ::testing::Test {
protected:
    static EncoderSettings settingsOf(std::string const& codec, AVPixelFormat format, AvOptions options) {
        EncoderSettings settings;
        settings.codec = codec;
        settings.shape = {320, 180, format};
        settings.options = std::move(options);
        return settings;
    }
    void open(EncoderSettings const& settings) { encoder_ = VideoEncoder::open(settings, error_); }
    void encodeAll() {
        for (int number = 0; number < frameCount; ++number) {
            pictures_.push_back(numberedPicture(number, encoder_->shape()));
            ASSERT_TRUE(encoder_->encode(*pictures_.back(), packets_, error_)) << error_;
        }
        ASSERT_TRUE(encoder_->finish(packets_, error_)) << error_;
    }
    /// Decodes the packets, in the order in which their pictures are shown.
    std::vector<PicturePtr> decodeAll() {
        AvPtr<AVCodecParameters> const parameters = encoder_->parameters();
        AvPtr<AVCodecContext> const decoder(
            avcodec_alloc_context3(avcodec_find_decoder(parameters->codec_id)));
        avcodec_parameters_to_context(decoder.get(), parameters.get());
        EXPECT_EQ(avcodec_open2(decoder.get(), nullptr, nullptr), 0);
        std::vector<PicturePtr> shown;
        packets_.emplace_back();
        for (AvPtr<AVPacket> const& packet : packets_) {
            EXPECT_EQ(avcodec_send_packet(decoder.get(), packet.get()), 0);
            for (AvPtr<AVFrame> frame = makeFrame(); avcodec_receive_frame(decoder.get(), frame.get()) == 0;
                 frame = makeFrame()) {
                shown.push_back(PicturePtr(frame.release(), AvDeleter()));
            }
        }
        return shown;
    }
    void expectAllShown(double leastLikeness) {
        std::vector<PicturePtr> const shown = decodeAll();
        ASSERT_EQ(shown.size(), pictures_.size());
        for (int number = 0; number < frameCount; ++number) {
            EXPECT_EQ(numberOn(shown[number].get()), number);
            EXPECT_GE(likeness(*pictures_[number], *shown[number]), leastLikeness) << "frame " << number;
        }
    }

    std::unique_ptr<VideoEncoder> encoder_;
    std::vector<PicturePtr> pictures_;
    Packets packets_;
    std::string error_;
};

struct Coding {
    char const* name;
    char const* codec;
    AVPixelFormat format;
    AvOptions options;
    double leastLikeness;
};

void PrintTo(Coding const& coding, std::ostream* out) {
    *out << coding.name;
}

class EveryCoding : public VideoEncoderTest, public ::testing::WithParamInterface<Coding> {};

TEST_P(EveryCoding, ShowsEachPictureInItsPlace) {
    open(settingsOf(GetParam().codec, GetParam().format, GetParam().options));
    ASSERT_TRUE(encoder_) << error_;
    encodeAll();
    expectAllShown(GetParam().leastLikeness);
}

INSTANTIATE_TEST_SUITE_P(
    Codings, EveryCoding,
    ::testing::Values(Coding{"ProRes", "prores_ks", AV_PIX_FMT_YUV422P10, {{"profile", "hq"}}, 38.0},
                      Coding{"DNxHR", "dnxhd", AV_PIX_FMT_YUV422P, {{"profile", "dnxhr_hq"}}, 38.0},
                      Coding{"H264", "libx264", AV_PIX_FMT_YUV420P, {{"crf", "16"}}, 38.0},
                      Coding{"LosslessH264", "libx264", AV_PIX_FMT_YUV420P, losslessOptions("libx264"),
                             isTheSame},
                      Coding{"LosslessH264Of10Bits", "libx264", AV_PIX_FMT_YUV422P10,
                             losslessOptions("libx264"), isTheSame},
                      Coding{"FFV1", "ffv1", AV_PIX_FMT_YUV422P10, losslessOptions("ffv1"), isTheSame}),
    [](::testing::TestParamInfo<Coding> const& coding) { return testNameOf(coding.param.name); });

TEST_F(VideoEncoderTest, NumbersThePacketsByFrames) {
    open(settingsOf("ffv1", AV_PIX_FMT_YUV420P, {}));
    ASSERT_TRUE(encoder_) << error_;
    encodeAll();
    ASSERT_EQ(packets_.size(), std::size_t(frameCount));
    EXPECT_EQ(packets_[7]->pts, 7);
    EXPECT_EQ(packets_[7]->duration, 1);
    EXPECT_EQ(av_cmp_q(encoder_->timeBase(), {1, 25}), 0);
}

TEST_F(VideoEncoderTest, CodesAPictureThatWasAnyKindBeforeAsItLikes) {
    open(settingsOf("libx264", AV_PIX_FMT_YUV420P, {{"g", "100"}}));
    ASSERT_TRUE(encoder_) << error_;
    PicturePtr const picture = numberedPicture(0, encoder_->shape());
    AvPtr<AVFrame> const intra(av_frame_clone(picture.get()));
    intra->pict_type = AV_PICTURE_TYPE_I;
    for (int number = 0; number < frameCount; ++number) {
        ASSERT_TRUE(encoder_->encode(*intra, packets_, error_)) << error_;
    }
    ASSERT_TRUE(encoder_->finish(packets_, error_)) << error_;
    EXPECT_EQ(packets_.back()->flags & AV_PKT_FLAG_KEY, 0);
}

TEST_F(VideoEncoderTest, RefusesAPictureOfAnotherSize) {
    open(settingsOf("ffv1", AV_PIX_FMT_YUV420P, {}));
    PicturePtr const other = numberedPicture(0, {640, 360, AV_PIX_FMT_YUV420P});
    EXPECT_FALSE(encoder_->encode(*other, packets_, error_));
    EXPECT_EQ(error_, "frame 0 has another size or pixel format than the first");
}

TEST_F(VideoEncoderTest, NamesAnEncoderThatIsNotThere) {
    open(settingsOf("no-such", AV_PIX_FMT_YUV420P, {}));
    EXPECT_FALSE(encoder_);
    EXPECT_EQ(error_, "this FFmpeg has no encoder \"no-such\" of pictures");
}

TEST_F(VideoEncoderTest, NamesAPixelFormatThatTheEncoderDoesNotTake) {
    open(settingsOf("prores_ks", AV_PIX_FMT_YUV420P, {}));
    EXPECT_FALSE(encoder_);
    EXPECT_EQ(error_, "the encoder \"prores_ks\" takes no pictures of the format \"yuv420p\"");
}

TEST_F(VideoEncoderTest, NamesAnOptionThatTheEncoderDoesNotHave) {
    open(settingsOf("ffv1", AV_PIX_FMT_YUV420P, {{"no-such", "1"}}));
    EXPECT_FALSE(encoder_);
    EXPECT_EQ(error_, "the encoder \"ffv1\" has no option \"no-such\"");
}

TEST_F(VideoEncoderTest, RefusesASizeThatTheEncoderCannotCode) {
    EncoderSettings settings = settingsOf("dnxhd", AV_PIX_FMT_YUV422P, {{"profile", "dnxhr_hq"}});
    settings.shape = {64, 32, AV_PIX_FMT_YUV422P};
    open(settings);
    EXPECT_FALSE(encoder_);
    EXPECT_THAT(error_, ::testing::HasSubstr("64x32"));
}

TEST_F(VideoEncoderTest, HasNoLosslessOptionsForAnEncoderThatLoses) {
    EXPECT_TRUE(losslessOptions("dnxhd").empty());
}

}  // namespace
}  // namespace test
