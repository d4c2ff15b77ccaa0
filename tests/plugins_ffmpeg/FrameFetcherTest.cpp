/// The engine as a whole, on clips whose pictures bear their numbers.
#include "plugins/ffmpeg/FrameFetcher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>

#include "playfile/Counters.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/MovBoxes.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using playfile_ffmpeg::FrameFetcher;
using playfile_ffmpeg::FrameIndex;
using playfile_ffmpeg::PacketEntry;

class FrameFetcherTest : public ::testing::Test {
protected:
    void open(std::string const& path) {
        std::string error;
        fetcher_ = FrameFetcher::open(path, error);
        ASSERT_TRUE(fetcher_) << path << ": " << error;
    }
    /// Opens a clip with the bytes of one packet overwritten.
    void openDamaged(std::string const& name, std::uint32_t packet) {
        open(medium(name));
        PacketEntry const damaged = fetcher_->index().packet(packet);
        std::filesystem::copy_file(medium(name), folder_.file(name));
        std::fstream file(folder_.file(name), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(damaged.position);
        file << std::string(damaged.byteCount, '\xff');
        file.close();
        open(folder_.file(name));
    }
    /// Opens a clip of the MOV family without its list of keys, so that every packet counts as one.
    void openWithoutKeyList(std::string const& name) {
        std::ifstream file(medium(name), std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        std::size_t const at = bytes.find("stss");
        ASSERT_NE(at, std::string::npos);
        folder_.write(name, bytes.replace(at, 4, "free"));
        open(folder_.file(name));
        ASSERT_TRUE(fetcher_->index().isEveryPacketAKey());
    }
    /// Opens a clip that ends where one of its packets begins.
    void openCut(std::string const& name, std::uint32_t packet) {
        open(medium(name));
        std::int64_t const end = fetcher_->index().packet(packet).position;
        std::filesystem::copy_file(medium(name), folder_.file(name));
        std::filesystem::resize_file(folder_.file(name), static_cast<std::uintmax_t>(end));
        open(folder_.file(name));
    }

    /// The number on a frame; -1 if it can't be had.
    [[nodiscard]] int fetch(std::uint32_t frame) { return numberOn(fetcher_->fetch(frame).get()); }
    [[nodiscard]] std::vector<int> fetchAll() {
        std::vector<int> numbers;
        for (std::uint32_t frame = 0; frame < fetcher_->frameCount(); ++frame) {
            numbers.push_back(fetch(frame));
        }
        return numbers;
    }
    /// The brightness of a frame.
    [[nodiscard]] std::vector<uint8_t> pixelsOf(std::uint32_t frame) const {
        auto const picture = fetcher_->fetch(frame);
        std::vector<uint8_t> pixels;
        for (int row = 0; picture && row < picture->height; ++row) {
            uint8_t const* const begin = picture->data[0] + row * picture->linesize[0];
            pixels.insert(pixels.end(), begin, begin + picture->width);
        }
        return pixels;
    }
    [[nodiscard]] static std::vector<int> numbersFrom(int first, std::size_t count) {
        std::vector<int> numbers(count);
        std::iota(numbers.begin(), numbers.end(), first);
        return numbers;
    }

    [[nodiscard]] FrameFetcher::Counters during(std::function<void()> const& action) const {
        FrameFetcher::Counters const before = fetcher_->counters();
        action();
        FrameFetcher::Counters after = fetcher_->counters();
        after.seeks -= before.seeks;
        after.packetsRead -= before.packetsRead;
        after.framesDecoded -= before.framesDecoded;
        after.storeHits -= before.storeHits;
        return after;
    }

    TemporaryFolder folder_;
    std::unique_ptr<FrameFetcher> fetcher_;
};

struct Recorded {
    char const* name;
    std::uint32_t frames;
    int first = 0;  ///< The number on the first frame.
};

void PrintTo(Recorded const& clip, std::ostream* out) {
    *out << clip.name;
}

class RecordedClip : public FrameFetcherTest, public ::testing::WithParamInterface<Recorded> {
protected:
    void SetUp() override { open(medium(GetParam().name)); }
};

TEST_P(RecordedClip, HasTheFramesThatWereRecorded) {
    EXPECT_EQ(fetcher_->frameCount(), GetParam().frames);
}

TEST_P(RecordedClip, ShowsAtEachFrameTheNumberThatWasRecorded) {
    EXPECT_EQ(fetchAll(), numbersFrom(GetParam().first, GetParam().frames));
}

TEST_P(RecordedClip, NeverSeeksWhenItIsReadOnward) {
    EXPECT_EQ(during([this] { static_cast<void>(fetchAll()); }).seeks, 0U);
}

TEST_P(RecordedClip, ReadsNoPacketTwiceWhenItIsReadOnward) {
    static_cast<void>(fetchAll());
    EXPECT_LE(fetcher_->counters().packetsRead, fetcher_->index().packetCount());
}

TEST_P(RecordedClip, ShowsEachFrameLaterThanTheOneBefore) {
    FrameIndex const& index = fetcher_->index();
    for (std::uint32_t frame = 1; frame < fetcher_->frameCount(); ++frame) {
        ASSERT_GT(index.ptsOf(frame), index.ptsOf(frame - 1)) << "frame " << frame;
    }
}

TEST_P(RecordedClip, ShowsTheSameNumbersBackward) {
    std::vector<int> numbers;
    for (std::uint32_t frame = fetcher_->frameCount(); frame > 0; --frame) {
        numbers.push_back(fetch(frame - 1));
    }
    std::reverse(numbers.begin(), numbers.end());
    EXPECT_EQ(numbers, numbersFrom(GetParam().first, GetParam().frames));
}

INSTANTIATE_TEST_SUITE_P(
    Clips, RecordedClip,
    ::testing::Values(Recorded{"h264-bframes-aac.mp4", 100}, Recorded{"h264-open-gop.mp4", 100},
                      Recorded{"h264-one-long-gop.mp4", 100}, Recorded{"h264-intra.mov", 100},
                      Recorded{"h264-one-frame.mp4", 1}, Recorded{"h264-edit-list.mp4", 63, 37},
                      Recorded{"h264-raw.h264", 100}, Recorded{"h264-mpegts.ts", 100},
                      Recorded{"h264-matroska.mkv", 100}, Recorded{"h264-fragmented.mp4", 100},
                      Recorded{"h264-varying-rate.mp4", 100}, Recorded{"h264-interlaced.mp4", 100},
                      Recorded{"prores-422-pcm.mov", 50}, Recorded{"dnxhr-sq.mov", 50},
                      Recorded{"dnxhr-sq.mxf", 50}, Recorded{"mjpeg.mov", 50}, Recorded{"mjpeg.avi", 50},
                      Recorded{"mpeg4-bframes.avi", 100}, Recorded{"mpeg4-packed.avi", 94},
                      Recorded{"png.mov", 25}, Recorded{"rawvideo-uyvy.mov", 10},
                      Recorded{"mpeg2-interlaced.ts", 50}, Recorded{"mpeg2-program-stream.mpg", 50},
                      Recorded{"vp9.webm", 50}, Recorded{"vp9-hidden-frames.webm", 100},
                      Recorded{"vp9-hidden-frames.mp4", 100}, Recorded{"two-videos.mp4", 50},
                      Recorded{"video-and-cover-art.mp4", 100}),
    [](::testing::TestParamInfo<Recorded> const& clip) { return testNameOf(clip.param.name); });

TEST_F(FrameFetcherTest, HasNoFrameBehindTheLast) {
    open(medium("mjpeg.mov"));
    EXPECT_FALSE(fetcher_->fetch(50));
}

TEST_F(FrameFetcherTest, SeeksOnceForAJumpBack) {
    open(medium("h264-one-long-gop.mp4"));
    static_cast<void>(fetch(90));
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(10), 10); }).seeks, 1U);
}

TEST_F(FrameFetcherTest, ReadsNoFurtherThanItMustInALongGroup) {
    open(medium("h264-one-long-gop.mp4"));
    for (std::uint32_t const frame : {90U, 70U, 50U, 30U}) {
        static_cast<void>(fetch(frame));
    }
    std::uint32_t const needed = fetcher_->index().packetOf(10) + 1;
    EXPECT_LE(during([this] { EXPECT_EQ(fetch(10), 10); }).packetsRead, needed);
}

TEST_F(FrameFetcherTest, ReadsOneFrameOnlyOfAnIntraCodedClip) {
    open(medium("prores-422-pcm.mov"));
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(40), 40); }).packetsRead, 1U);
}

TEST_F(FrameFetcherTest, KeepsThePicturesOnTheWayForWhoStepsBack) {
    open(medium("h264-one-long-gop.mp4"));
    static_cast<void>(fetch(60));
    static_cast<void>(fetch(59));
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(58), 58); }).packetsRead, 0U);
}

TEST_F(FrameFetcherTest, CountsItsDecodesAmongThoseOfTheProcess) {
    open(medium("h264-one-long-gop.mp4"));
    std::uint64_t const before = playFileCounters().framesDecoded;
    std::uint64_t const decoded = during([this] { EXPECT_EQ(fetch(10), 10); }).framesDecoded;
    EXPECT_GT(decoded, 0U);
    EXPECT_EQ(playFileCounters().framesDecoded, before + decoded);
}

TEST_F(FrameFetcherTest, FailsADamagedFrameAndShiftsNoOther) {
    openDamaged("mjpeg.mov", 7);
    std::vector<int> expected = numbersFrom(0, 50);
    expected[7] = -1;
    EXPECT_EQ(fetchAll(), expected);
}

TEST_F(FrameFetcherTest, KeepsTheNumbersBehindADamagedFrameThatOthersReferTo) {
    openDamaged("h264-bframes-aac.mp4", 30);
    EXPECT_EQ(fetch(99), 99);
}

TEST_F(FrameFetcherTest, CountsADamagedFrame) {
    openDamaged("h264-bframes-aac.mp4", 30);
    EXPECT_EQ(fetcher_->frameCount(), 100U);
}

TEST_F(FrameFetcherTest, DoesNotTryAFrameAgainThatCannotBeDecoded) {
    openDamaged("mjpeg.mov", 7);
    static_cast<void>(fetch(7));
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(7), -1); }).packetsRead, 0U);
}

TEST_F(FrameFetcherTest, ReadsAClipOnwardWhosePacketsAreAllFalselyMarkedAsKeys) {
    openWithoutKeyList("h264-bframes-aac.mp4");
    EXPECT_EQ(fetchAll(), numbersFrom(0, 100));
}

TEST_F(FrameFetcherTest, JumpsInAClipWhosePacketsAreAllFalselyMarkedAsKeys) {
    openWithoutKeyList("h264-bframes-aac.mp4");
    EXPECT_EQ(fetch(60), 60);
    EXPECT_EQ(fetch(31), 31);
}

/// The decoder shows predicted pictures even without those that they refer to.
TEST_F(FrameFetcherTest, ShowsNoPictureThatLacksThoseItRefersTo) {
    open(medium("mpeg4-bframes.mp4"));
    std::vector<uint8_t> const whole = pixelsOf(60);
    openWithoutKeyList("mpeg4-bframes.mp4");
    EXPECT_EQ(pixelsOf(60), whole);
}

TEST_F(FrameFetcherTest, NumbersTheFramesOfACutFileAsIfItWereWhole) {
    openCut("demo.mp4", 100);
    EXPECT_EQ(fetcher_->frameCount(), 250U);
}

TEST_F(FrameFetcherTest, DoesNotReadForAFrameBehindTheEndOfACutFile) {
    openCut("demo.mp4", 100);
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(249), -1); }).packetsRead, 0U);
}

TEST_F(FrameFetcherTest, RefusesAFileWithoutAPicture) {
    std::string error;
    EXPECT_FALSE(FrameFetcher::open(medium("tone.wav"), error));
    EXPECT_EQ(error, "holds no video stream");
}

TEST_F(FrameFetcherTest, RefusesAMovieWhosePicturesLieInAnotherFile) {
    std::ifstream in(medium("h264-one-frame.mp4"), std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    folder_.write("reference.mov", referringElsewhere(bytes));
    std::string error;
    EXPECT_FALSE(FrameFetcher::open(folder_.file("reference.mov"), error));
    EXPECT_EQ(error, "names another file that holds its pictures");
}

}  // namespace
}  // namespace test
