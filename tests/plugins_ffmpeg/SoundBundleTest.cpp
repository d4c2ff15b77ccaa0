#include <gtest/gtest.h>

#include <algorithm>

#include "plugins/ffmpeg/Bundle.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

class SoundBundle : public ::testing::Test {
protected:
    SoundBundle() {
        BundleWriter writer(bytes_);
        writer.addRun({10, 110, 20});
        writer.addRun({30, 230, 5});
        addPacket(writer, 100, 64, true, "first");
        addPacket(writer, 164, 64, false, "");
        addPacket(writer, 228, 32, false, "last");
        writer.finish(true, false, 77);
    }
    void addPacket(BundleWriter& writer, int64_t first, uint32_t count, bool isFirst,
                   std::string const& contents) {
        writer.beginPacket(first, count, isFirst);
        bytes_.insert(bytes_.end(), contents.begin(), contents.end());
        writer.endPacket();
    }
    [[nodiscard]] Bundle read() const {
        Bundle bundle;
        EXPECT_TRUE(readBundle(bytes_, bundle));
        return bundle;
    }
    static std::string textOf(Bundle::Packet const& packet) {
        return {packet.bytes.begin(), packet.bytes.end()};
    }

    std::vector<uint8_t> bytes_;
};

TEST_F(SoundBundle, BringsTheRuns) {
    Bundle const bundle = read();
    ASSERT_EQ(bundle.runs.size(), 2U);
    EXPECT_EQ(bundle.runs[1].heard, 30);
    EXPECT_EQ(bundle.runs[1].decoded, 230);
    EXPECT_EQ(bundle.runs[1].count, 5);
}

TEST_F(SoundBundle, BringsThePacketsBytes) {
    Bundle const bundle = read();
    ASSERT_EQ(bundle.packets.size(), 3U);
    EXPECT_EQ(textOf(bundle.packets[0]), "first");
    EXPECT_EQ(textOf(bundle.packets[2]), "last");
}

TEST_F(SoundBundle, BringsAPacketWithoutBytes) {
    EXPECT_TRUE(read().packets[1].bytes.empty());
}

TEST_F(SoundBundle, BringsThePacketsPlaces) {
    Bundle const bundle = read();
    EXPECT_EQ(bundle.packets[2].firstSample, 228);
    EXPECT_EQ(bundle.packets[2].sampleCount, 32U);
}

TEST_F(SoundBundle, TellsTheFirstPacketOfTheStream) {
    Bundle const bundle = read();
    EXPECT_TRUE(bundle.packets[0].isFirstOfStream);
    EXPECT_FALSE(bundle.packets[1].isFirstOfStream);
}

TEST_F(SoundBundle, BringsWhatIsSaidOfAllOfIt) {
    Bundle const bundle = read();
    EXPECT_TRUE(bundle.startsAnew);
    EXPECT_FALSE(bundle.endsStream);
    EXPECT_EQ(bundle.holdFrom, 77);
}

TEST_F(SoundBundle, HoldsNothingOfTheOneThatWasReadBefore) {
    Bundle bundle = read();
    ASSERT_TRUE(readBundle(bytes_, bundle));
    EXPECT_EQ(bundle.packets.size(), 3U);
}

TEST_F(SoundBundle, IsNoneIfItIsCutAnywhere) {
    Bundle bundle;
    for (size_t length = 0; length < bytes_.size(); ++length) {
        ASSERT_FALSE(readBundle({bytes_.data(), length}, bundle)) << length;
    }
}

TEST_F(SoundBundle, IsNoneWithoutItsMark) {
    Bundle bundle;
    bytes_[0] ^= 1;
    EXPECT_FALSE(readBundle(bytes_, bundle));
}

}  // namespace
}  // namespace test
