/// Streams that aren't played. The setting is read once in a process, and each test has one of its own.
#include <algorithm>
#include <array>
#include <atomic>

#include "ole/os/OS.h"
#include "tests/audio/AudioFixture.h"
#include "toolkit/services/Settings.h"

namespace {

class SilenceTest : public SoundFixture {
protected:
    void openWith(int streamsToPlay, unsigned streamCount = 3) {
        setConfigInt("NumAudioStreamsToPlay", streamsToPlay);
        open(std::vector<Aud::Metadata>(streamCount, soundFormat(2)));
    }
    bool isSilent(std::uint32_t stream) {
        std::size_t const before = script->reads().size();
        Bytes const bytes = bytesRead({.stream = stream, .start = 7});
        bool const isZero = std::all_of(bytes.begin(), bytes.end(), [](auto byte) { return byte == 0; });
        return !bytes.empty() && isZero && script->reads().size() == before;
    }
};

TEST_F(SilenceTest, IsServedFromTheSettingsStreamOn) {
    openWith(1);
    EXPECT_FALSE(isSilent(0));
    EXPECT_TRUE(isSilent(1));
    EXPECT_TRUE(isSilent(2));
}

TEST_F(SilenceTest, IsServedFromStream99OnUnlessItIsSet) {
    open(std::vector<Aud::Metadata>(101, soundFormat(1)));
    EXPECT_FALSE(isSilent(98));
    EXPECT_TRUE(isSilent(99));
    EXPECT_TRUE(isSilent(100));
}

TEST_F(SilenceTest, IsAllThereIsWithASettingOfZero) {
    openWith(0);
    EXPECT_TRUE(isSilent(0));
}

TEST_F(SilenceTest, IsNowhereWithANegativeSetting) {
    openWith(-1);
    EXPECT_FALSE(isSilent(0));
    EXPECT_FALSE(isSilent(2));
}

TEST_F(SilenceTest, IsNotHeardOfAStreamThatTheFileDoesNotHave) {
    openWith(0, 1);
    EXPECT_EQ(read({.stream = 1})->getRequestStatus(), requestFailed);
}

TEST_F(SilenceTest, ReadsItsSettingOnce) {
    openWith(1);
    EXPECT_TRUE(isSilent(1));
    openWith(2);
    EXPECT_TRUE(isSilent(1));
}

TEST_F(SilenceTest, IsACompleteResultOf4BytesASample) {
    openWith(1);
    RecordingIssuer issuer;
    AudioRequestPtr const request = read({.stream = 2, .count = 30, .fetch = 50, .issuer = &issuer});
    EXPECT_EQ(issuer.only().status, requestComplete);
    EXPECT_EQ(bytesOf(request->buffer), Bytes(200));
    EXPECT_EQ(request->buffer.getSampleCount(), 50U);
    EXPECT_EQ(request->buffer.getTag(), 2U);
    EXPECT_EQ(request->buffer.getSampleFormat(), 0U);
    EXPECT_TRUE(request->buffer.getFlag());
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{});
}

TEST_F(SilenceTest, IsSharedByAllRequestsAndHandedOutWhole) {
    openWith(1);
    AudioRequestPtr const large = read({.stream = 1, .count = 300});
    AudioRequestPtr const small = read({.stream = 2, .start = 9000, .count = 10});
    EXPECT_EQ(small->buffer.getHolder(), large->buffer.getHolder());
    EXPECT_EQ(small->buffer.getSampleCount(), 300U);
    EXPECT_EQ(small->getUsed(), 1200U);
    EXPECT_EQ(small->buffer.getTag(), 1U);
}

TEST_F(SilenceTest, GrowsAndLeavesWhatWasHandedOutAsItWas) {
    openWith(1);
    AudioRequestPtr const small = read({.stream = 1, .count = 10});
    AudioRequestPtr const large = read({.stream = 1, .count = 300});
    EXPECT_EQ(bytesOf(large->buffer), Bytes(1200));
    EXPECT_EQ(small->getUsed(), 40U);
    EXPECT_EQ(small->buffer.getSampleCount(), 10U);
    EXPECT_EQ(file->silence.getSampleCount(), 300U);
    EXPECT_NE(small->buffer.getHolder(), large->buffer.getHolder());
}

/// The sanitizers have allocation functions of their own.
#if !defined(PLAYFILE_SANITIZED)

/// Remembers the sizes of all blocks that are taken while it lives.
class SizesTaken final : public iMemoryService {
public:
    SizesTaken() : before_(memoryService()) { installMemoryService(this); }
    ~SizesTaken() { installMemoryService(&before_); }
    void* allocate(std::size_t byteCount) override {
        sizes[count++ % sizes.size()] = byteCount;
        return before_.allocate(byteCount);
    }
    void release(void* block) noexcept override { before_.release(block); }
    [[nodiscard]] bool holds(std::size_t byteCount) const {
        return std::find(sizes.begin(), sizes.end(), byteCount) != sizes.end();
    }

    std::array<std::size_t, 1000> sizes{};
    std::atomic<std::size_t> count{0};

private:
    iMemoryService& before_;
};

TEST_F(SilenceTest, IsFirstAsLargeAsItWasBeforeAndGrowsThen) {
    openWith(1);
    read({.stream = 1, .count = 1237});
    SizesTaken const taken;
    read({.stream = 1, .count = 5003});
    EXPECT_TRUE(taken.holds(4 * 1237));
    EXPECT_TRUE(taken.holds(4 * 5003));
}

#endif

TEST_F(SilenceTest, IsZeroInAllTheMemoryItHas) {
    openWith(1);
    read({.stream = 1, .count = 300});
    AudioRequestPtr const request = read({.stream = 1, .count = 301});
    auto const* const first = static_cast<std::uint8_t const*>(request->getBuffer());
    EXPECT_GE(request->buffer.getSize(), request->getUsed());
    EXPECT_TRUE(std::all_of(first, first + request->buffer.getSize(), [](auto byte) { return byte == 0; }));
}

TEST_F(SilenceTest, OfNoSamplesIsEmpty) {
    openWith(1);
    AudioRequestPtr const request = read({.stream = 1, .count = 0});
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(request->getUsed(), 0U);
}

TEST_F(SilenceTest, FailsForMoreSamplesThanABufferCounts) {
    openWith(1);
    EXPECT_EQ(read({.stream = 1, .count = 0x40000000})->getRequestStatus(), requestFailed);
    EXPECT_TRUE(isSilent(1));
}

TEST_F(SilenceTest, IsNotTakenFromWhatIsKeptOfTheStream) {
    openWith(1);
    Aud::StreamBufferList list;
    list.resize(2);
    list.sampleCount = 100;
    file->addBuffers(1, 0, list);
    EXPECT_EQ(bytesRead({.stream = 1}), Bytes(400));
}

}  // namespace
