/// Which decoded samples are heard, and under which number.
#include <gtest/gtest.h>

#include "plugins/ffmpeg/KeptSamples.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int64_t packetSamples = 100;

TrimMark skipping(int64_t count) {
    TrimMark mark;
    mark.skip = count;
    return mark;
}
TrimMark cutting(int64_t count) {
    TrimMark mark;
    mark.cutAtEnd = count;
    return mark;
}
TrimMark discarded() {
    TrimMark mark;
    mark.isDiscarded = true;
    return mark;
}

/// What is kept of packets of 100 samples with these marks.
KeptSamples keptOf(std::vector<TrimMark> const& marks, int64_t skip = 0) {
    Trimmer trimmer(skip);
    for (TrimMark const& mark : marks) {
        trimmer.take(packetSamples, mark);
    }
    return trimmer.kept();
}

/// The decoded number of a heard sample; -1 for one that isn't there.
int64_t decodedOf(KeptSamples const& kept, int64_t heard) {
    std::vector<SampleRun> runs;
    kept.find(heard, heard + 1, runs);
    return runs.empty() ? -1 : runs.front().decoded;
}

TEST(Trimmer, KeepsAllWhereNothingIsMarked) {
    EXPECT_EQ(keptOf({{}, {}, {}}).count(), 300);
}

TEST(Trimmer, CountsFromTheFirstSampleBehindThePriming) {
    EXPECT_EQ(decodedOf(keptOf({skipping(30), {}}), 0), 30);
}

TEST(Trimmer, SkipsOverSeveralPackets) {
    EXPECT_EQ(decodedOf(keptOf({skipping(230), {}, {}}), 0), 230);
}

TEST(Trimmer, SkipsWhatTheDecoderWantsSkipped) {
    EXPECT_EQ(decodedOf(keptOf({{}, {}}, 30), 0), 30);
}

TEST(Trimmer, TakesTheContainersSkipForTheDecoders) {
    EXPECT_EQ(decodedOf(keptOf({skipping(10), {}}, 30), 0), 10);
}

TEST(Trimmer, CutsTheEndOfAPacket) {
    EXPECT_EQ(keptOf({{}, cutting(40)}).count(), 160);
}

TEST(Trimmer, CutsAWholePacket) {
    EXPECT_EQ(keptOf({{}, cutting(100)}).count(), 100);
}

TEST(Trimmer, IgnoresACutThatIsLongerThanWhatIsLeftOfThePacket) {
    EXPECT_EQ(keptOf({{}, cutting(101)}).count(), 200);
}

TEST(Trimmer, LeavesOutAPacketThatIsOnlyThereForTheDecoder) {
    EXPECT_EQ(decodedOf(keptOf({discarded(), {}}), 0), 100);
}

TEST(Trimmer, CountsADiscardedPacketAsSkipped) {
    TrimMark first = discarded();
    first.skip = 130;
    EXPECT_EQ(decodedOf(keptOf({first, {}, {}}), 0), 130);
}

TEST(Trimmer, PassesOverPacketsWithoutSamples) {
    Trimmer trimmer(0);
    trimmer.take(0, {});
    trimmer.take(packetSamples, {});
    EXPECT_EQ(trimmer.kept().count(), 100);
}

TEST(KeptSamples, JoinsWhatFollowsEachOther) {
    EXPECT_EQ(keptOf({{}, {}, {}}).runs().size(), 1U);
}

TEST(KeptSamples, GoesOnBehindWhatIsHidden) {
    EXPECT_EQ(decodedOf(keptOf({{}, discarded(), {}}), 100), 200);
}

TEST(KeptSamples, GivesARangeOverWhatIsHiddenInTwoRuns) {
    std::vector<SampleRun> runs;
    keptOf({{}, discarded(), {}}).find(90, 120, runs);
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].count, 10);
    EXPECT_EQ(runs[1].count, 20);
}

TEST(KeptSamples, GivesNothingBehindTheLastSample) {
    EXPECT_EQ(decodedOf(keptOf({{}}), 100), -1);
}

TEST(KeptSamples, HasNoSamplesWithoutPackets) {
    EXPECT_EQ(KeptSamples().count(), 0);
}

class TrimMarkTest : public ::testing::Test {
protected:
    /// What the container says beside the packet.
    void say(uint32_t skip, uint32_t cut, size_t byteCount = 10) {
        uint8_t* const bytes = av_packet_new_side_data(packet_.get(), AV_PKT_DATA_SKIP_SAMPLES, byteCount);
        AV_WL32(bytes, skip);
        AV_WL32(bytes + 4, cut);
    }

    AvPtr<AVPacket> const packet_ = makePacket();
};

TEST_F(TrimMarkTest, IsEmptyForAPacketOfWhichNothingIsSaid) {
    EXPECT_TRUE(trimMarkOf(*packet_).isEmpty());
}

TEST_F(TrimMarkTest, TellsBothEnds) {
    say(312, 648);
    EXPECT_EQ(trimMarkOf(*packet_).skip, 312);
    EXPECT_EQ(trimMarkOf(*packet_).cutAtEnd, 648);
}

TEST_F(TrimMarkTest, TellsASkipOfNothingFromNoSkip) {
    say(0, 5);
    EXPECT_EQ(trimMarkOf(*packet_).skip, 0);
}

TEST_F(TrimMarkTest, IgnoresWhatIsTooShort) {
    say(312, 648, 9);
    EXPECT_TRUE(trimMarkOf(*packet_).isEmpty());
}

TEST_F(TrimMarkTest, TellsAPacketThatIsOnlyThereForTheDecoder) {
    packet_->flags |= AV_PKT_FLAG_DISCARD;
    EXPECT_TRUE(trimMarkOf(*packet_).isDiscarded);
}

}  // namespace
}  // namespace test
