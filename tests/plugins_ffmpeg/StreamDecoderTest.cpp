/// What is decoded for frames asked for in different orders, of a clip that is one group of 100 frames.
#include "plugins/ffmpeg/StreamDecoder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <thread>

#include "tests/plugins_ffmpeg/Media.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr std::uint32_t frameCount = 100;
constexpr char const* oneGroup = "h264-one-long-gop.mp4";

std::size_t threadsOfTheProcess() {
    auto const tasks = std::filesystem::directory_iterator("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

class StreamDecoderTest : public ::testing::Test {
protected:
    void SetUp() override { decoder_ = open(oneGroup); }

    std::shared_ptr<StreamDecoder> open(std::string const& name) {
        std::string error;
        std::unique_ptr<FrameFetcher> fetcher = FrameFetcher::open(medium(name), error);
        EXPECT_TRUE(fetcher) << error;
        return StreamDecoder::make(std::move(fetcher), *keeper_, std::uint64_t{1} << 30);
    }
    /// Gives it memory for so many pictures.
    void allow(std::uint64_t pictures) {
        decoder_->setMemory(pictures * decoder_->file().store().largestPicture());
    }
    /// The number on the frame.
    int fetch(std::uint32_t frame) {
        pattern_.note(frame);
        int number = -1;
        decoder_->decode({frame}, pattern_,
                         [&](std::size_t, PicturePtr const& picture) { number = numberOn(picture.get()); });
        return number;
    }
    void fetchBackward(std::uint32_t from, std::uint32_t to) {
        for (std::uint32_t frame = from + 1; frame > to; --frame) {
            ASSERT_EQ(fetch(frame - 1), static_cast<int>(frame - 1));
        }
    }
    void fetchOnward(std::uint32_t from, std::uint32_t end) {
        for (std::uint32_t frame = from; frame < end; ++frame) {
            ASSERT_EQ(fetch(frame), static_cast<int>(frame));
        }
    }
    [[nodiscard]] FrameFetcher::Counters during(std::function<void()> const& action) const {
        FrameFetcher::Counters const before = decoder_->counters();
        action();
        FrameFetcher::Counters after = decoder_->counters();
        after.seeks -= before.seeks;
        after.packetsRead -= before.packetsRead;
        after.framesDecoded -= before.framesDecoded;
        after.storeHits -= before.storeHits;
        return after;
    }

    std::unique_ptr<DecoderKeeper> keeper_ = std::make_unique<DecoderKeeper>(2);
    std::shared_ptr<StreamDecoder> decoder_;
    ReadPattern pattern_;
};

TEST_F(StreamDecoderTest, NeverSeeksOnwardAndDecodesNothingTwice) {
    auto const counted = during([this] { fetchOnward(0, frameCount); });
    EXPECT_EQ(counted.seeks, 0U);
    EXPECT_LE(counted.framesDecoded, frameCount);
}

TEST_F(StreamDecoderTest, UsesTheFrameThatOpeningHasDecoded) {
    auto const counted = during([this] { EXPECT_EQ(fetch(0), 0); });
    EXPECT_EQ(counted.framesDecoded, 0U);
    EXPECT_EQ(counted.storeHits, 1U);
}

TEST_F(StreamDecoderTest, StoresNextToNothingOnward) {
    fetchOnward(0, 60);
    EXPECT_LE(decoder_->storedCount(), 4U);
}

TEST_F(StreamDecoderTest, DecodesAGroupOnceBackwardIfMemoryHoldsIt) {
    EXPECT_EQ(fetch(99), 99);
    EXPECT_LE(during([this] { fetchBackward(98, 0); }).framesDecoded, frameCount);
}

TEST_F(StreamDecoderTest, DecodesAGroupBackwardAsFewTimesAsMemoryAllows) {
    allow(40);
    EXPECT_EQ(fetch(99), 99);
    auto const counted = during([this] { fetchBackward(98, 0); });
    EXPECT_LE(counted.seeks, 5U);
    EXPECT_LE(counted.framesDecoded, 3 * frameCount);
}

TEST_F(StreamDecoderTest, NeverStoresMoreThanMemoryAllows) {
    for (std::uint64_t const pictures : {4U, 9U, 40U}) {
        allow(pictures);
        std::size_t most = 0;
        for (std::uint32_t const frame : {99U, 98U, 97U, 40U, 45U, 43U, 90U, 10U, 11U, 12U}) {
            ASSERT_EQ(fetch(frame), static_cast<int>(frame));
            most = std::max(most, decoder_->storedCount());
        }
        EXPECT_LE(most + 2 * decoder_->room().batch, pictures);
    }
}

TEST_F(StreamDecoderTest, SharesTheMemoryWithAnotherOneThatOpens) {
    std::uint64_t const picture = decoder_->file().store().largestPicture();
    keeper_ = std::make_unique<DecoderKeeper>(8, 40 * picture);
    decoder_ = open(oneGroup);
    EXPECT_EQ(fetch(99), 99);
    EXPECT_EQ(fetch(98), 98);
    ASSERT_GT(decoder_->storedCount(), 20U);
    std::shared_ptr<StreamDecoder> const other = open(oneGroup);
    EXPECT_LE(decoder_->storedCount() + 2 * decoder_->room().batch, 20U);
}

TEST_F(StreamDecoderTest, GivesTheRightFramesWithMemoryForFour) {
    allow(4);
    fetchOnward(0, 20);
    fetchBackward(60, 40);
    EXPECT_EQ(fetch(99), 99);
    EXPECT_EQ(fetch(3), 3);
}

/// A hand that jerks to either side of a playhead that moves on by a frame a read.
TEST_F(StreamDecoderTest, DecodesHardlyAFrameTwiceForALookAround) {
    constexpr int offsets[] = {3, -5, 0, 5, -2, 1, -4, 4, -1, 2, -3};
    auto const counted = during([&] {
        for (std::uint32_t read = 0; read < 80; ++read) {
            std::uint32_t const frame = 10 + read + static_cast<std::uint32_t>(offsets[read % 11]);
            ASSERT_EQ(fetch(frame), static_cast<int>(frame));
        }
    });
    EXPECT_LE(counted.framesDecoded, 2 * 90U);
    EXPECT_LE(counted.seeks, 2U);
}

TEST_F(StreamDecoderTest, GoesOnToAFrameAheadInTheSameGroup) {
    EXPECT_EQ(fetch(20), 20);
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(60), 60); }).seeks, 0U);
}

TEST_F(StreamDecoderTest, SeeksOnceForAJumpBack) {
    allow(8);
    EXPECT_EQ(fetch(90), 90);
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(10), 10); }).seeks, 1U);
}

TEST_F(StreamDecoderTest, KnowsWhatComesAlongWithAFrame) {
    auto const groups = open("h264-bframes-aac.mp4");
    EXPECT_TRUE(groups->comesWith(50, 60));
    EXPECT_FALSE(groups->comesWith(40, 60));
    EXPECT_FALSE(groups->comesWith(60, 1000));
}

TEST_F(StreamDecoderTest, CountsOnlyWhatIsStoredAsComingWithAStoredFrame) {
    allow(8);
    EXPECT_EQ(fetch(60), 60);
    EXPECT_FALSE(decoder_->comesWith(20, 60));
}

TEST_F(StreamDecoderTest, IsClosedWhenOthersAreUsedAndStillGivesTheRightFrames) {
    fetchOnward(0, 30);
    auto const second = open(oneGroup);
    auto const third = open(oneGroup);
    EXPECT_EQ(decoder_->storedCount(), 0U);
    fetchOnward(30, 50);
    fetchBackward(49, 20);
}

TEST_F(StreamDecoderTest, CountsOnAfterItWasClosed) {
    fetchOnward(0, 30);
    std::uint64_t const before = decoder_->counters().framesDecoded;
    EXPECT_TRUE(decoder_->tryClose());
    EXPECT_EQ(decoder_->counters().framesDecoded, before);
}

TEST_F(StreamDecoderTest, StartsNoThreadToShowTheFirstFrame) {
    std::size_t const before = threadsOfTheProcess();
    std::shared_ptr<StreamDecoder> const another = open(oneGroup);
    EXPECT_LE(threadsOfTheProcess(), before);
}

TEST_F(StreamDecoderTest, StartsItsThreadsForTheSecondFrame) {
    std::size_t const before = threadsOfTheProcess();
    static_cast<void>(fetch(1));
    EXPECT_EQ(threadsOfTheProcess() > before, std::thread::hardware_concurrency() > 1);
}

TEST_F(StreamDecoderTest, NeedsNoDecoderForAFirstFrameThatNobodyHadReadWhenItWasClosed) {
    EXPECT_TRUE(decoder_->tryClose());
    EXPECT_EQ(during([this] { EXPECT_EQ(fetch(0), 0); }).framesDecoded, 0U);
}

TEST_F(StreamDecoderTest, LetsGoOfAFirstPictureThatWasReadWhenItIsClosed) {
    static_cast<void>(fetch(0));
    EXPECT_TRUE(decoder_->tryClose());
    EXPECT_EQ(decoder_->storedCount(), 0U);
}

TEST_F(StreamDecoderTest, LetsGoOfALargeFirstPictureWhenItIsClosed) {
    std::shared_ptr<StreamDecoder> const large = open("h264-720p.mp4");
    EXPECT_EQ(large->storedCount(), 1U);
    EXPECT_TRUE(large->tryClose());
    EXPECT_EQ(large->storedCount(), 0U);
}

TEST_F(StreamDecoderTest, IsNotClosedWhileItDecodes) {
    bool isClosed = true;
    decoder_->decode({0}, pattern_, [&](std::size_t, PicturePtr const&) {
        std::thread([&] { isClosed = decoder_->tryClose(); }).join();
    });
    EXPECT_FALSE(isClosed);
}

/// FFmpeg gives out no memory in blocks of more than so many bytes.
class NoMemory {
public:
    explicit NoMemory(std::size_t most) { av_max_alloc(most); }
    ~NoMemory() { av_max_alloc(INT32_MAX); }
    NoMemory(NoMemory const&) = delete;
    NoMemory& operator=(NoMemory const&) = delete;
};

TEST_F(StreamDecoderTest, ForgetsAWantOfMemory) {
    {
        NoMemory const none(100);
        EXPECT_THROW(fetch(50), std::exception);
    }
    EXPECT_EQ(fetch(50), 50);
}

}  // namespace
}  // namespace test
