/// Packets of plain samples, so that a decoded sample tells where it came from.
#include <gtest/gtest.h>

#include <numeric>

#include "plugins/ffmpeg/BundleDecoder.h"
#include "tests/plugins_ffmpeg/SoundParts.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int packetSamples = 10;

class SoundBundleDecoder : public ::testing::Test {
protected:
    SoundBundleDecoder() {
        std::string error;
        decoder_ = std::make_unique<BundleDecoder>(
            SoundDecoder::open(*parametersOf(AV_CODEC_ID_PCM_S16LE), error), shortForm());
    }
    /// Packet `number` of ten samples, sample n of value n. `contents` for one of another length.
    void add(int number, std::string const& contents) {
        texts_.push_back(std::make_unique<std::string>(contents));
        auto const* const bytes = reinterpret_cast<uint8_t const*>(texts_.back()->data());
        bundle_.packets.push_back(
            {number * packetSamples, packetSamples, number == 0, {bytes, texts_.back()->size()}});
    }
    void add(int number) { add(number, rising(number * packetSamples, packetSamples)); }
    /// Decodes the bundle and reads so many samples; the next bundle goes on.
    std::vector<int16_t> read(int64_t first, int64_t count) {
        bundle_.runs = {{0, first, count}};
        decoder_->take(bundle_);
        std::vector<uint8_t> bytes(static_cast<size_t>(count) * sizeof(int16_t), 0xee);
        decoder_->write(bundle_, 0, bytes.data());
        bundle_ = Bundle();
        return shortsOf(bytes);
    }
    static std::vector<int16_t> from(int first, int count) {
        std::vector<int16_t> samples(static_cast<size_t>(count));
        std::iota(samples.begin(), samples.end(), static_cast<int16_t>(first));
        return samples;
    }

    std::unique_ptr<BundleDecoder> decoder_;
    Bundle bundle_;
    std::vector<std::unique_ptr<std::string>> texts_;
};

TEST_F(SoundBundleDecoder, GivesTheSamplesOfAPacket) {
    add(0);
    EXPECT_EQ(read(0, 10), from(0, 10));
}

TEST_F(SoundBundleDecoder, GivesARunThatBeginsAndEndsInsidePackets) {
    add(0);
    add(1);
    add(2);
    EXPECT_EQ(read(7, 16), from(7, 16));
}

TEST_F(SoundBundleDecoder, GoesOnWithWhatTheLastPacketHasLeft) {
    add(0);
    static_cast<void>(read(0, 7));
    add(1);
    EXPECT_EQ(read(7, 10), from(7, 10));
}

TEST_F(SoundBundleDecoder, GivesAgainWhatItStillHolds) {
    add(0);
    add(1);
    static_cast<void>(read(0, 20));
    EXPECT_EQ(read(5, 10), from(5, 10));
}

TEST_F(SoundBundleDecoder, ForgetsWhatWillNotBeAskedForAgain) {
    add(0);
    static_cast<void>(read(0, 10));
    add(1);
    bundle_.holdFrom = 10;
    static_cast<void>(read(10, 10));
    EXPECT_EQ(read(5, 5), std::vector<int16_t>(5, 0));
}

TEST_F(SoundBundleDecoder, StartsAnewAtAnyPacket) {
    add(0);
    static_cast<void>(read(0, 10));
    add(7);
    bundle_.startsAnew = true;
    EXPECT_EQ(read(70, 10), from(70, 10));
}

TEST_F(SoundBundleDecoder, HoldsNothingOverAStart) {
    add(0);
    static_cast<void>(read(0, 10));
    add(7);
    bundle_.startsAnew = true;
    static_cast<void>(read(70, 10));
    EXPECT_EQ(read(0, 10), std::vector<int16_t>(10, 0));
}

TEST_F(SoundBundleDecoder, GivesTheSameForAFirstPacketThatItHasHadAlready) {
    add(0);
    bundle_.startsAnew = true;
    static_cast<void>(read(0, 10));
    add(0);
    bundle_.startsAnew = true;
    EXPECT_EQ(read(0, 10), from(0, 10));
}

TEST_F(SoundBundleDecoder, GivesSilenceForAPacketThatCannotBeRead) {
    add(0);
    add(1, "");
    add(2);
    std::vector<int16_t> expected = from(0, 30);
    std::fill(expected.begin() + 10, expected.begin() + 20, int16_t{0});
    EXPECT_EQ(read(0, 30), expected);
}

TEST_F(SoundBundleDecoder, FillsUpAPacketThatGivesTooFew) {
    add(0);
    add(1, rising(10, 6));
    add(2);
    std::vector<int16_t> expected = from(0, 30);
    std::fill(expected.begin() + 16, expected.begin() + 20, int16_t{0});
    EXPECT_EQ(read(0, 30), expected);
}

TEST_F(SoundBundleDecoder, CutsAPacketThatGivesTooManyWhereTheNextBegins) {
    add(0);
    add(1, rising(10, 15));
    add(2);
    EXPECT_EQ(read(0, 30), from(0, 30));
}

TEST_F(SoundBundleDecoder, TakesItForTheBeginningThatIsLostWhenTheFirstPacketAfterAStartGivesTooFew) {
    add(3, rising(36, 4));
    add(4);
    bundle_.startsAnew = true;
    EXPECT_EQ(read(36, 14), from(36, 14));
}

TEST_F(SoundBundleDecoder, GivesSilenceBehindTheLastPacket) {
    add(0);
    bundle_.endsStream = true;
    std::vector<int16_t> expected = from(0, 10);
    expected.resize(15, 0);
    EXPECT_EQ(read(0, 15), expected);
}

TEST_F(SoundBundleDecoder, ForgetsAllByAReset) {
    add(0);
    static_cast<void>(read(0, 10));
    decoder_->reset();
    EXPECT_EQ(read(0, 10), std::vector<int16_t>(10, 0));
}

TEST_F(SoundBundleDecoder, JoinsRunsThatDoNotFollowEachOther) {
    add(0);
    add(1);
    add(2);
    bundle_.runs = {{0, 2, 3}, {3, 21, 2}};
    decoder_->take(bundle_);
    std::vector<uint8_t> bytes(10);
    decoder_->write(bundle_, 0, bytes.data());
    EXPECT_EQ(shortsOf(bytes), (std::vector<int16_t>{2, 3, 4, 21, 22}));
}

TEST_F(SoundBundleDecoder, GivesSilenceForAChannelThatThePacketsDoNotHave) {
    add(0);
    bundle_.runs = {{0, 0, 10}};
    decoder_->take(bundle_);
    std::vector<uint8_t> bytes(20, 0xee);
    decoder_->write(bundle_, 5, bytes.data());
    EXPECT_EQ(bytes, std::vector<uint8_t>(20, 0));
}

}  // namespace
}  // namespace test
