#include "plugins/ffmpeg/OpenContainer.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/plugins_ffmpeg/Media.h"

namespace test {
namespace {

using playfile_ffmpeg::AvPtr;
using playfile_ffmpeg::makePacket;
using playfile_ffmpeg::OpenContainer;

using Bytes = std::vector<uint8_t>;

class OpenContainerTest : public ::testing::Test {
protected:
    void open(std::string const& name) {
        std::string error;
        ASSERT_TRUE(container_.open(medium(name), error)) << error;
    }
    /// The bytes of the next packet; empty at the end.
    [[nodiscard]] Bytes read() {
        return container_.readVideoPacket(*packet_) >= 0 ? Bytes(packet_->data, packet_->data + packet_->size)
                                                         : Bytes();
    }
    /// How many pictures of MPEG-4 begin in the bytes.
    [[nodiscard]] static int picturesIn(Bytes const& bytes) {
        int count = 0;
        for (size_t at = 0; at + 4 <= bytes.size(); ++at) {
            count += bytes[at] == 0 && bytes[at + 1] == 0 && bytes[at + 2] == 1 && bytes[at + 3] == 0xb6;
        }
        return count;
    }

    OpenContainer container_;
    AvPtr<AVPacket> const packet_ = makePacket();
};

TEST_F(OpenContainerTest, BringsPacketsOfOnePictureEach) {
    open("mpeg4-packed.avi");
    for (Bytes packet = read(); !packet.empty(); packet = read()) {
        ASSERT_EQ(picturesIn(packet), 1);
    }
}

TEST_F(OpenContainerTest, SaysThatItTookAPacketApart) {
    open("mpeg4-packed.avi");
    static_cast<void>(read());
    EXPECT_FALSE(container_.hasTakenApart());
    static_cast<void>(read());
    EXPECT_TRUE(container_.hasTakenApart());
}

TEST_F(OpenContainerTest, TakesNothingApartThatHoldsOnePicture) {
    open("mpeg4-bframes.avi");
    while (!read().empty()) {
    }
    EXPECT_FALSE(container_.hasTakenApart());
}

TEST_F(OpenContainerTest, ForgetsTheRestOfAPacketWhenItGoesElsewhere) {
    open("mpeg4-packed.avi");
    Bytes const first = read();
    static_cast<void>(read());
    ASSERT_TRUE(container_.seek(container_.video().index, 0, AVSEEK_FLAG_BACKWARD));
    EXPECT_EQ(read(), first);
}

TEST_F(OpenContainerTest, ForgetsTheRestOfAPacketWhenItIsOpenedAgain) {
    open("mpeg4-packed.avi");
    Bytes const first = read();
    static_cast<void>(read());
    std::string error;
    ASSERT_TRUE(container_.reopen(error)) << error;
    EXPECT_EQ(read(), first);
}

TEST_F(OpenContainerTest, ReadsOnAfterAnEnd) {
    open("mpeg4-packed.avi");
    Bytes const first = read();
    while (!read().empty()) {
    }
    ASSERT_TRUE(container_.seek(container_.video().index, 0, AVSEEK_FLAG_BACKWARD));
    EXPECT_EQ(read(), first);
}

TEST_F(OpenContainerTest, ChoosesTheFirstVideoThatIsNoCoverPicture) {
    open("video-and-cover-art.mp4");
    EXPECT_EQ(container_.video().codecpar->codec_id, AV_CODEC_ID_H264);
}

TEST_F(OpenContainerTest, RefusesAFileOfSound) {
    std::string error;
    EXPECT_FALSE(container_.open(medium("tone.wav"), error));
    EXPECT_EQ(error, "holds no video stream");
}

TEST_F(OpenContainerTest, RefusesText) {
    std::string error;
    EXPECT_FALSE(container_.open(medium("text-named.mov"), error));
    EXPECT_TRUE(error.starts_with("is in no known format: ")) << error;
}

}  // namespace
}  // namespace test
