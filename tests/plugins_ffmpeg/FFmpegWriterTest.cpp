#include "plugins/ffmpeg/FFmpegWriter.h"

#include <gtest/gtest.h>

#include "files/PlayUtil.h"
#include "plugins/ffmpeg/FFmpegWriterInfo.h"
#include "plugins/ffmpeg/FrameFetcher.h"
#include "plugins/ffmpeg/PictureSurface.h"
#include "plugins/ffmpeg/SurfacePicture.h"
#include "tests/fakes/ByteHolder.h"
#include "tests/fakes/FullDisk.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/NumberedPicture.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int frameCount = 60;
constexpr double leastLikeness = 38.0;
PictureShape const recorded{320, 180, AV_PIX_FMT_YUV420P};

Ox::FileWriterParams paramsOf(char const* format, configb const& options = {}) {
    Ox::FileWriterParams params;
    params.format = format;
    params.video.setFrameRate({30000, 1001});
    params.options = options;
    return params;
}

configb optionsOf(char const* key, char const* value) {
    configb options;
    options.set(key, value);
    return options;
}

class FFmpegWriterTest : public ::testing::Test {
protected:
    OxResult create(Ox::FileWriterParams const& params) {
        path_ = "take." + WriterFormat::extensionOf(params.format.c_str());
        return info_.openFile(folder_.name(path_), params, file_);
    }
    static Ox::Image::Surface picture(int number, PictureShape const& shape = recorded) {
        return surfaceOf(numberedPicture(number, shape), {}, 0.0);
    }
    std::uint32_t write(int number, PictureShape const& shape = recorded) {
        auto packet = Ox::makePtr<CapturePacket>(picture(number, shape));
        return PlayUtil::OxVideoSample_write(file_, number, packet, nullptr);
    }
    /// How many frames were taken.
    int writeAll(PictureShape const& shape = recorded) {
        for (int number = 0; number < frameCount; ++number) {
            if (write(number, shape) != oxSuccess) {
                return number;
            }
        }
        return frameCount;
    }
    void readBack() {
        std::string error;
        fetcher_ = FrameFetcher::open(folder_.file(path_), error);
        ASSERT_TRUE(fetcher_) << error;
    }
    /// All frames that can be shown bear their numbers, and are like what was recorded.
    void expectShown(std::uint32_t frame) {
        PicturePtr const shown = fetcher_->fetch(frame);
        ASSERT_TRUE(shown) << "frame " << frame;
        EXPECT_EQ(numberOn(shown.get()), static_cast<int>(frame));
        PicturePtr const back = PictureConverter().convert(*shown, recorded, AVCOL_SPC_UNSPECIFIED);
        EXPECT_GE(likeness(*numberedPicture(static_cast<int>(frame), recorded), *back), leastLikeness)
            << "frame " << frame;
    }
    void expectAllShown() {
        readBack();
        ASSERT_EQ(fetcher_->frameCount(), std::uint32_t(frameCount));
        EXPECT_EQ(av_cmp_q(fetcher_->facts().frameRate, {30000, 1001}), 0);
        for (std::uint32_t frame = 0; frame < frameCount; ++frame) {
            expectShown(frame);
        }
    }

    TemporaryFolder folder_;
    LogRecorder log_;
    FFmpegWriterInfo info_;
    std::string path_;
    Ox::Ptr<FileWriteInstance> file_;
    std::unique_ptr<FrameFetcher> fetcher_;
};

struct Wanted {
    char const* format;
    char const* profile;
    char const* codec;
    AVPixelFormat pixelFormat;
    char const* fragments = "1";
};

void PrintTo(Wanted const& wanted, std::ostream* out) {
    *out << wanted.format << ' ' << wanted.profile;
}

class EveryFormat : public FFmpegWriterTest, public ::testing::WithParamInterface<Wanted> {
protected:
    void SetUp() override {
        configb options = optionsOf("profile", GetParam().profile);
        options.set("fragments", GetParam().fragments);
        ASSERT_EQ(create(paramsOf(GetParam().format, options)), oxSuccess);
    }
};

TEST_P(EveryFormat, ShowsEachFrameAsItWasRecorded) {
    EXPECT_EQ(writeAll(), frameCount);
    EXPECT_EQ(file_->finish(), oxSuccess);
    expectAllShown();
}

TEST_P(EveryFormat, IsOfTheCodecAndPixelFormatThatWereAskedFor) {
    EXPECT_EQ(writeAll(), frameCount);
    EXPECT_EQ(file_->finish(), oxSuccess);
    readBack();
    EXPECT_EQ(fetcher_->facts().codec, GetParam().codec);
    EXPECT_EQ(fetcher_->facts().pixelFormat, GetParam().pixelFormat);
}

TEST_P(EveryFormat, IsWholeWhenItsLastOwnerLetsGo) {
    EXPECT_EQ(writeAll(), frameCount);
    file_ = nullptr;
    readBack();
    EXPECT_EQ(fetcher_->frameCount(), std::uint32_t(frameCount));
}

INSTANTIATE_TEST_SUITE_P(Formats, EveryFormat,
                         ::testing::Values(Wanted{"mov-prores", "proxy", "prores", AV_PIX_FMT_YUV422P10},
                                           Wanted{"mov-prores", "hq", "prores", AV_PIX_FMT_YUV422P10},
                                           Wanted{"mov-prores", "standard", "prores", AV_PIX_FMT_YUV422P10,
                                                  "0"},
                                           Wanted{"mov-prores", "4444", "prores", AV_PIX_FMT_YUV444P12},
                                           Wanted{"mov-dnxhr", "sq", "dnxhd", AV_PIX_FMT_YUV422P},
                                           Wanted{"mov-dnxhr", "hq", "dnxhd", AV_PIX_FMT_YUV422P, "0"},
                                           Wanted{"mov-dnxhr", "hqx", "dnxhd", AV_PIX_FMT_YUV422P10},
                                           Wanted{"mov-h264", "high", "h264", AV_PIX_FMT_YUV420P},
                                           Wanted{"mov-h264", "high422", "h264", AV_PIX_FMT_YUV422P, "0"},
                                           Wanted{"mov-h264", "lossless", "h264", AV_PIX_FMT_YUV420P},
                                           Wanted{"mxf-dnxhr", "hq", "dnxhd", AV_PIX_FMT_YUV422P},
                                           Wanted{"mxf-dnxhr", "444", "dnxhd", AV_PIX_FMT_YUV444P10}),
                         [](::testing::TestParamInfo<Wanted> const& wanted) {
                             return testNameOf(std::string(wanted.param.format) + wanted.param.profile +
                                               (*wanted.param.fragments == '0' ? "OneTable" : ""));
                         });

TEST_F(FFmpegWriterTest, TakesPicturesThatNobodyDecoded) {
    ASSERT_EQ(create(paramsOf("mov-h264", optionsOf("profile", "lossless"))), oxSuccess);
    PicturePtr const source = numberedPicture(5, recorded);
    Ox::Image::Surface const shown = surfaceOf(source, {}, 0.0);
    Ox::Image::Surface own(320, 180, shown.getDataFormat(), 8, 12, Ox::Image::layoutTopDown,
                           Ox::Image::showForeignMemory, 0);
    own.setPlanes({shown.getPlane(0), shown.getPlane(1), shown.getPlane(2)}, Ox::makePtr<ByteHolder>(1U));
    EXPECT_EQ(file_->writeFrameData(own), oxSuccess);
    EXPECT_EQ(file_->finish(), oxSuccess);
    readBack();
    EXPECT_EQ(likeness(*source, *fetcher_->fetch(0)), isTheSame);
}

TEST_F(FFmpegWriterTest, TurnsPicturesWhoseLastRowComesFirst) {
    PicturePtr const source = numberedPicture(5, {320, 180, AV_PIX_FMT_GRAY8});
    Ox::Image::Surface const shown = surfaceOf(source, {}, 0.0);
    Ox::Image::Surface turned(320, 180, shown.getDataFormat(), 8, 8, Ox::Image::layoutBottomUp,
                              Ox::Image::showForeignMemory, 0);
    Ox::Image::Plane const plane = shown.getPlane(0);
    turned.setPlanes({{{plane.data + 179 * plane.stride, -plane.stride}}}, Ox::makePtr<ByteHolder>(1U));
    EXPECT_EQ(likeness(*source, *pictureFrom(turned)), isTheSame);
}

TEST_F(FFmpegWriterTest, KeepsTheSizeOfTheFirstPicture) {
    ASSERT_EQ(create(paramsOf("mov-prores")), oxSuccess);
    EXPECT_EQ(write(0), oxSuccess);
    EXPECT_EQ(write(1, {640, 360, AV_PIX_FMT_RGB24}), oxSuccess);
    EXPECT_EQ(file_->finish(), oxSuccess);
    readBack();
    EXPECT_EQ(fetcher_->fetch(1)->width, 320);
}

TEST_F(FFmpegWriterTest, LeavesNoFileWithoutPictures) {
    ASSERT_EQ(create(paramsOf("mov-prores")), oxSuccess);
    EXPECT_NE(file_->finish(), oxSuccess);
    EXPECT_FALSE(folder_.holds(path_));
    EXPECT_GE(log_.count("no picture has come"), 1U);
}

TEST_F(FFmpegWriterTest, TakesNothingMoreOnceItIsEnded) {
    ASSERT_EQ(create(paramsOf("mov-prores")), oxSuccess);
    EXPECT_EQ(write(0), oxSuccess);
    EXPECT_EQ(file_->finish(), oxSuccess);
    EXPECT_NE(write(1), oxSuccess);
    EXPECT_EQ(file_->finish(), oxSuccess);
}

TEST_F(FFmpegWriterTest, RefusesASurfaceWithoutAPicture) {
    ASSERT_EQ(create(paramsOf("mov-prores")), oxSuccess);
    EXPECT_EQ(file_->writeFrameData(Ox::Image::Surface()), oxFailure);
}

TEST_F(FFmpegWriterTest, RefusesPicturesThatTheCodecCannotHold) {
    ASSERT_EQ(create(paramsOf("mov-dnxhr")), oxSuccess);
    EXPECT_EQ(write(0, {64, 36, AV_PIX_FMT_YUV420P}), oxFailure);
    EXPECT_GE(log_.count("take.mov\" can't be written: the encoder \"dnxhd\" doesn't take 64x36"), 1U);
}

TEST_F(FFmpegWriterTest, NamesTheProfilesOfAFormat) {
    EXPECT_EQ(create(paramsOf("mxf-dnxhr", optionsOf("profile", "proxy"))), oxFailure);
    EXPECT_GE(log_.count("\"mxf-dnxhr\" has no profile \"proxy\"; choose one of lb, sq, hq, hqx, 444"), 1U);
    EXPECT_FALSE(folder_.holds(path_));
}

TEST_F(FFmpegWriterTest, RefusesAQualityThatIsNone) {
    EXPECT_EQ(create(paramsOf("mov-h264", optionsOf("crf", "99"))), oxFailure);
    EXPECT_GE(log_.count("\"99\" is no quality of H.264; choose 0 to 51"), 1U);
}

TEST_F(FFmpegWriterTest, TakesNoSound) {
    ASSERT_EQ(create(paramsOf("mov-prores")), oxSuccess);
    Ox::Ptr<iMemHolder> data = Ox::makePtr<ByteHolder>(4U);
    EXPECT_EQ(file_->writeAudioSamples(data, nullptr), oxFailure);
}

TEST_F(FFmpegWriterTest, KnowsItsFormats) {
    EXPECT_EQ(info_.getExtensions("mov-prores"), std::vector<LightweightString<wchar_t>>{L"mov"});
    EXPECT_EQ(info_.getExtensions("mxf-dnxhr"), std::vector<LightweightString<wchar_t>>{L"mxf"});
    EXPECT_TRUE(info_.getExtensions("wav").empty());
    EXPECT_TRUE(info_.canWrite(paramsOf("mov-h264")));
    EXPECT_FALSE(info_.canWrite(paramsOf("wav")));
}

TEST_F(FFmpegWriterTest, WritesNoFileWithoutARateOrWithSound) {
    Ox::FileWriterParams params = paramsOf("mov-h264");
    params.audioMetadata.resize(1);
    EXPECT_FALSE(info_.canWrite(params));
    params.audioMetadata.clear();
    params.video.setFrameRate({0, 1});
    EXPECT_FALSE(info_.canWrite(params));
}

TEST_F(FFmpegWriterTest, TellsWhereAFileCannotBeMade) {
    folder_.write("take.mov", "");
    EXPECT_EQ(info_.openFile(folder_.name("take.mov/a.mov"), paramsOf("mov-prores"), file_), oxFailure);
    EXPECT_FALSE(file_);
    EXPECT_GE(log_.count("take.mov/a.mov\" can't be written: File exists; choose another folder"), 1U);
}

class OnAFullDisk : public FFmpegWriterTest, public ::testing::WithParamInterface<char const*> {};

TEST_P(OnAFullDisk, KeepsTheFramesOfTheSecondsBefore) {
    FullDisk const disk(1500000);
    ASSERT_EQ(create(paramsOf(GetParam())), oxSuccess);
    static_cast<void>(writeAll({320, 180, AV_PIX_FMT_YUV420P}));
    EXPECT_NE(file_->finish(), oxSuccess);
    readBack();
    for (std::uint32_t frame = 0; frame < 28; ++frame) {
        expectShown(frame);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, OnAFullDisk, ::testing::Values("mov-prores", "mov-dnxhr", "mxf-dnxhr"),
                         [](::testing::TestParamInfo<char const*> const& format) {
                             return testNameOf(format.param);
                         });

TEST_F(FFmpegWriterTest, LeavesNoFileOnADiskThatTakesNoFrame) {
    FullDisk const disk(100);
    ASSERT_EQ(create(paramsOf("mxf-dnxhr")), oxSuccess);
    static_cast<void>(writeAll());
    EXPECT_NE(file_->finish(), oxSuccess);
    EXPECT_FALSE(folder_.holds(path_));
}

}  // namespace
}  // namespace test
