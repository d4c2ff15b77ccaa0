/// The example of a reader plug-in, loaded as any other.
#include <gtest/gtest.h>

#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "playfile/playfile.h"
#include "tests/examples/Ppm.h"
#include "tests/fakes/RecordingIssuer.h"
#include "toolkit/plugins/Plugin.h"
#include "video/VideoReadRequest.h"

namespace {

class ReaderPlugin : public ::testing::Test {
protected:
    ReaderPlugin() { loadPlugins(fromUTF8(PLAYFILE_EXAMPLE_PLUGIN_DIR)); }
    ~ReaderPlugin() override { playfile_exit(); }

    void openFile(std::string const& content, std::string const& name = "clip.ppm") {
        MemoryCatalogue::instance().add(clip_, fromUTF8(folder_.write(name, content).c_str()));
    }
    [[nodiscard]] std::uint64_t frameCount() const { return PlayFileCache::getSampleCount(clip_); }

    /// The first byte of a frame's pixels, -1 if there is no such frame.
    [[nodiscard]] int firstByteOf(int frame) const {
        RecordingIssuer issuer;
        Ox::Ptr<VideoReadRequest> request;
        OxResult const result = PlayFileCache::Shared()->videoReadRequest(
            request, clip_, frame, false, resultDecompressed, DecodeFormat::getDefault(), issuer.getProxy());
        bool const hasEnded = result == oxSuccess && issuer.waitForCalls(1);
        if (!hasEnded || issuer.only().status != requestComplete) {
            return -1;
        }
        Ox::Image::Surface picture;
        request->getResultBuffer()->getSurface(0, picture);
        return *picture.getPlane(0).data;
    }

    PpmFolder folder_;
    Cookie clip_{Ox::UUID::generate(), 'V', 0};
};

TEST_F(ReaderPlugin, ReadsEveryPictureOfAFile) {
    openFile(PpmFolder::picture(5, 3, 10) + PpmFolder::picture(5, 3, 20));
    EXPECT_EQ(firstByteOf(1), 20);
    EXPECT_EQ(firstByteOf(0), 10);
    EXPECT_EQ(frameCount(), 2U);
}

TEST_F(ReaderPlugin, ServesAFileOfOnePictureAtAnyFrame) {
    openFile(PpmFolder::picture(5, 3, 10));
    EXPECT_EQ(firstByteOf(1000), 10);
}

TEST_F(ReaderPlugin, HasNoFramePastTheLastPicture) {
    openFile(PpmFolder::picture(5, 3, 10) + PpmFolder::picture(5, 3, 20));
    EXPECT_EQ(firstByteOf(2), -1);
}

TEST_F(ReaderPlugin, LeavesOutAPictureThatIsCutShort) {
    std::string const whole = PpmFolder::picture(5, 3, 10) + PpmFolder::picture(5, 3, 20);
    openFile(whole.substr(0, whole.size() - 1));
    EXPECT_EQ(frameCount(), 1U);
}

TEST_F(ReaderPlugin, LeavesOutWhatFollowsAPictureOfAnotherSize) {
    openFile(PpmFolder::picture(5, 3, 1) + PpmFolder::picture(3, 5, 2) + PpmFolder::picture(5, 3, 3));
    EXPECT_EQ(frameCount(), 1U);
}

TEST_F(ReaderPlugin, LeavesFilesOfOtherNamesAlone) {
    openFile(PpmFolder::picture(5, 3, 10), "clip.dat");
    EXPECT_EQ(frameCount(), 0U);
}

struct Refused {
    char const* name;
    std::string content;
};

class RefusedFile : public ReaderPlugin, public ::testing::WithParamInterface<Refused> {};

TEST_P(RefusedFile, HasNoFrame) {
    openFile(GetParam().content);
    EXPECT_EQ(frameCount(), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    ReaderPlugin, RefusedFile,
    ::testing::Values(Refused{"Text", "These are words and no pictures."}, Refused{"EmptyFile", ""},
                      Refused{"HeaderWithoutAnEnd", "P6 5 3 255"},
                      Refused{"CommentWithoutAnEnd", "P6 # " + std::string(10000, 'x')},
                      Refused{"SizeOfZero", "P6 0 3 255\n"},
                      Refused{"NumbersThatNoSizeCanBe", "P6 99999999999999999999 99999999999999999999 255\n"},
                      Refused{"SixteenBits", "P6 1 1 65535\n" + std::string(6, 'x')}),
    [](::testing::TestParamInfo<Refused> const& file) { return std::string(file.param.name); });

}  // namespace
