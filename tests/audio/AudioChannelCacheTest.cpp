/// What is remembered of the latest read of each stream.
#include "audio/AudioChannelCache.h"

#include <atomic>
#include <limits>
#include <utility>

#include "gtest/gtest.h"
#include "tests/fakes/ByteHolder.h"
#include "tests/support/Threads.h"

namespace {

/// A cache whose lock a test can take.
class Cache : public AudioChannelCache {
public:
    using AudioChannelCache::lock_;
};

TEST(AudioChannelCacheAlone, NeedsNoReader) {
    AudioChannelCache cache;
    AudioRequest wanted{0, 0, 0, 0, 1};
    EXPECT_FALSE(cache.contains(wanted));
}

class AudioChannelCacheTest : public ::testing::Test {
protected:
    static constexpr std::uint32_t bytesPerSample = 2;
    static constexpr std::uint64_t farAway = std::numeric_limits<std::uint64_t>::max() - 1;

    /// A read of two channels of 16 bits.
    static Aud::StreamBufferList makeRead(std::uint32_t samples) {
        Aud::StreamBufferList list;
        for (std::uint32_t channel = 0; channel < 2; ++channel) {
            list.push_back({Ox::makePtr<ByteHolder>(samples * bytesPerSample), channel + 40, false, 0, 7});
        }
        list.sampleCount = samples;
        list.format = 7;
        return list;
    }
    /// One of 8192 bytes in each channel, whose list says another number of samples.
    static Aud::StreamBufferList makeReadThatSays(std::uint32_t samples) {
        Aud::StreamBufferList list = makeRead(4096);
        list.sampleCount = samples;
        return list;
    }
    static AudioRequest request(std::uint64_t start, std::uint32_t count, std::uint32_t channel = 0,
                                std::uint32_t stream = 0) {
        return {stream, channel, channel, start, count};
    }
    bool contains(std::uint64_t start, std::uint32_t count, std::uint32_t stream = 0) {
        AudioRequest wanted = request(start, count, 0, stream);
        return cache.contains(wanted);
    }
    Aud::StreamBuffer get(std::uint64_t start, std::uint32_t channel = 0, std::uint32_t stream = 0) {
        AudioRequest wanted = request(start, 1, channel, stream);
        return cache.getResult(wanted, bytesPerSample);
    }

    /// The bytes at 2000 of a read of 8192 bytes in each channel that begins at 1000.
    void expectTheBytesFrom2000On(Aud::StreamBufferList const& list) {
        cache.addBuffers(0, 1000, list);
        Aud::StreamBuffer const result = get(2000);
        EXPECT_EQ(result.getBuffer(), static_cast<std::uint8_t*>(list[0].getBuffer()) + 2000);
        EXPECT_EQ(result.getUsed(), 6192U);
    }

    Cache cache;
};

TEST_F(AudioChannelCacheTest, ContainsNothingAtFirstAndStillNothingWhenItWasAsked) {
    EXPECT_FALSE(contains(0, 1));
    EXPECT_FALSE(contains(0, 1)) << "an entry was made, which contains everything";
    EXPECT_FALSE(contains(0, 0));
}

TEST_F(AudioChannelCacheTest, DoesNotContainAnotherStreamAndMakesNoEntryForIt) {
    cache.addBuffers(1, 0, makeRead(100));
    EXPECT_FALSE(contains(0, 1, 0));
    EXPECT_FALSE(contains(0, 1, 0));
    EXPECT_TRUE(contains(0, 1, 1));
}

TEST_F(AudioChannelCacheTest, ContainsWhatEndsOnItsLastSampleAndNothingThatEndsLater) {
    cache.addBuffers(0, 1000, makeRead(4096));
    EXPECT_TRUE(contains(1000, 4096));
    EXPECT_TRUE(contains(5095, 1));
    EXPECT_FALSE(contains(1000, 4097));
    EXPECT_FALSE(contains(5095, 2));
    EXPECT_FALSE(contains(5096, 1));
}

TEST_F(AudioChannelCacheTest, DoesNotContainWhatBeginsBeforeIt) {
    cache.addBuffers(0, 1000, makeRead(4096));
    EXPECT_FALSE(contains(999, 1));
    EXPECT_FALSE(contains(999, 4096));
}

TEST_F(AudioChannelCacheTest, ComparesEndsIn64Bits) {
    std::uint64_t const start = std::uint64_t{1} << 40;
    cache.addBuffers(0, start, makeRead(100));
    EXPECT_TRUE(contains(start + 99, 1));
    EXPECT_FALSE(contains(start + 99, 0xFFFFFFFF));
    EXPECT_FALSE(contains(0, 1));
}

TEST_F(AudioChannelCacheTest, WithAnEntryOfNoSamplesAtZeroContainsEverything) {
    cache.addBuffers(0, 0, makeRead(0));
    EXPECT_TRUE(contains(0, 1));
    EXPECT_TRUE(contains(farAway, 1));
}

TEST_F(AudioChannelCacheTest, WithAnEntryOfNoSamplesElsewhereContainsAsMuch) {
    cache.addBuffers(0, 5, makeRead(0));
    EXPECT_TRUE(contains(5, 0));
    EXPECT_FALSE(contains(5, 1));
    EXPECT_FALSE(contains(0, 1));
}

TEST_F(AudioChannelCacheTest, GivesTheWholeBufferFromItsStart) {
    Aud::StreamBufferList const list = makeRead(4096);
    cache.addBuffers(0, 1000, list);
    Aud::StreamBuffer const result = get(1000, 1);
    EXPECT_EQ(result.getHolder(), list[1].getHolder());
    EXPECT_EQ(result.getUsed(), 8192U);
    EXPECT_EQ(result.getSampleCount(), 4096U);
    EXPECT_EQ(result.getTag(), 41U);
    EXPECT_EQ(result.getSampleFormat(), 7U);
}

TEST_F(AudioChannelCacheTest, CutsTheFrontOffAndSharesTheMemory) {
    Aud::StreamBufferList const list = makeRead(4096);
    cache.addBuffers(0, 1000, list);
    Aud::StreamBuffer const result = get(2000, 1);
    EXPECT_EQ(result.getBuffer(), static_cast<std::uint8_t*>(list[1].getBuffer()) + 2000);
    EXPECT_EQ(result.getUsed(), 6192U);
    EXPECT_EQ(result.getSize(), 6192U);
    EXPECT_EQ(result.getSampleCount(), 3096U);
    EXPECT_EQ(result.getTag(), 41U);
    EXPECT_EQ(result.getSampleFormat(), 7U);
    EXPECT_TRUE(Ox::dynamicPtrCast<MemRef>(result.getHolder()));
}

TEST_F(AudioChannelCacheTest, GivesTheRestOfTheReadHoweverLittleIsWanted) {
    cache.addBuffers(0, 0, makeRead(100));
    AudioRequest wanted = request(90, 3);
    EXPECT_EQ(cache.getResult(wanted, bytesPerSample).getSampleCount(), 10U);
}

TEST_F(AudioChannelCacheTest, CutsByTheUsedBytesAndNotByTheCapacity) {
    Aud::StreamBufferList list = makeRead(100);
    list[0].setUsed(120);
    cache.addBuffers(0, 0, list);
    EXPECT_EQ(get(10).getUsed(), 100U);
    EXPECT_EQ(get(10).getSampleCount(), 90U);
}

TEST_F(AudioChannelCacheTest, CutsByTheBytesWhereTheListSaysFewerSamplesThanItHolds) {
    expectTheBytesFrom2000On(makeReadThatSays(500));
}

TEST_F(AudioChannelCacheTest, CutsByTheBytesWhereTheListSaysNoSamples) {
    expectTheBytesFrom2000On(makeReadThatSays(0));
}

TEST_F(AudioChannelCacheTest, GivesAnEmptyBufferForAChannelThatIsNotThere) {
    cache.addBuffers(0, 0, makeRead(100));
    for (std::uint32_t const channel : {2U, 3U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(get(0, channel).getHolder());
        EXPECT_EQ(get(50, channel).getSampleCount(), 0U);
    }
}

TEST_F(AudioChannelCacheTest, GivesAnEmptyViewBehindTheUsedBytes) {
    Aud::StreamBufferList list = makeRead(100);
    list[0].setUsed(40);
    cache.addBuffers(0, 0, list);
    EXPECT_EQ(get(50).getUsed(), 0U);
    EXPECT_EQ(get(50).getSampleCount(), 50U);
    EXPECT_EQ(get(101).getUsed(), 0U);
    EXPECT_EQ(get(101).getSampleCount(), 0U);
    EXPECT_EQ(get(farAway).getSampleCount(), 0U);
}

TEST_F(AudioChannelCacheTest, GivesAnEmptyViewBeforeTheEntry) {
    cache.addBuffers(0, 1000, makeRead(100));
    EXPECT_EQ(get(999).getUsed(), 0U);
    EXPECT_EQ(get(999).getSampleCount(), 0U);
}

TEST_F(AudioChannelCacheTest, GivesABufferWithoutAHolderAsItIs) {
    Aud::StreamBufferList list;
    list.push_back({});
    list.sampleCount = 100;
    cache.addBuffers(0, 0, list);
    EXPECT_FALSE(get(50).getHolder());
    EXPECT_EQ(get(50).getUsed(), 0U);
}

TEST_F(AudioChannelCacheTest, MakesAnEntryForAStreamWhoseResultIsAskedFor) {
    EXPECT_FALSE(get(0, 0, 3).getHolder());
    EXPECT_TRUE(contains(farAway, 1, 3)) << "an entry of no samples at zero";
    cache.addBuffers(3, 0, makeRead(10));
    EXPECT_FALSE(contains(farAway, 1, 3));
}

TEST_F(AudioChannelCacheTest, GivesEachBufferTheSampleCountOfItsList) {
    cache.addBuffers(0, 0, makeRead(33));
    EXPECT_EQ(get(0, 0).getSampleCount(), 33U);
    EXPECT_EQ(get(0, 1).getSampleCount(), 33U);
}

TEST_F(AudioChannelCacheTest, LeavesTheCallersListAlone) {
    Aud::StreamBufferList const list = makeRead(33);
    cache.addBuffers(0, 0, list);
    EXPECT_EQ(list[0].getSampleCount(), 0U);
}

TEST_F(AudioChannelCacheTest, IsReplacedByTheNextReadOfTheStreamAlone) {
    cache.addBuffers(0, 0, makeRead(100));
    cache.addBuffers(1, 0, makeRead(100));
    cache.addBuffers(0, 500, makeRead(10));
    EXPECT_FALSE(contains(0, 1, 0));
    EXPECT_TRUE(contains(500, 10, 0));
    EXPECT_TRUE(contains(0, 100, 1));
}

TEST_F(AudioChannelCacheTest, KeepsWhatWasHandedOutWhenItIsReplacedAndNothingElse) {
    Aud::StreamBufferList list = makeRead(100);
    auto const isAlive = [&](std::size_t channel) {
        return Ox::dynamicPtrCast<ByteHolder>(list[channel].getHolder())->alive();
    };
    ByteHolder::Alive const isHandedOutAlive = isAlive(0);
    ByteHolder::Alive const isOtherAlive = isAlive(1);
    cache.addBuffers(0, 0, std::move(list));
    Aud::StreamBuffer const result = get(50, 0);
    cache.addBuffers(0, 0, makeRead(1));
    EXPECT_TRUE(*isHandedOutAlive);
    EXPECT_FALSE(*isOtherAlive);
    EXPECT_EQ(result.getUsed(), 100U);
}

TEST_F(AudioChannelCacheTest, HandsOutItsBuffersToBeFilledInPlace) {
    AudioRequest wanted = request(700, 50);
    cache.getBuffers(wanted) = makeRead(50);
    EXPECT_TRUE(contains(700, 50));
    EXPECT_FALSE(contains(700, 51));
    EXPECT_EQ(get(710, 1).getUsed(), 80U);
}

TEST_F(AudioChannelCacheTest, KeepsTheBuffersThatAreThereWhenItHandsThemOutAgain) {
    Aud::StreamBufferList const list = makeRead(100);
    cache.addBuffers(0, 0, list);
    AudioRequest wanted = request(700, 50);
    EXPECT_EQ(cache.getBuffers(wanted).front().getHolder(), list.front().getHolder());
    EXPECT_FALSE(contains(0, 1));
    EXPECT_TRUE(contains(700, 50));
}

TEST_F(AudioChannelCacheTest, CanBeUsedWithItsLockHeld) {
    ScopedLock const scope(cache.lock_);
    cache.addBuffers(0, 0, makeRead(100));
    AudioRequest wanted = request(0, 100);
    EXPECT_TRUE(contains(0, 100));
    EXPECT_EQ(get(0).getSampleCount(), 100U);
    EXPECT_EQ(cache.getBuffers(wanted).size(), 2U);
}

TEST_F(AudioChannelCacheTest, IsConsistentForThreadsThatReplaceAndAsk) {
    constexpr std::uint32_t rounds = 500;
    std::atomic<unsigned> wrongCount{0};
    std::atomic<std::uint32_t> next{1};
    {
        test::Threads const threads(4, [&] {
            for (std::uint32_t i = 0; i < rounds; ++i) {
                std::uint32_t const samples = next++ % 50 + 1;
                cache.addBuffers(0, 0, makeRead(samples));
                Aud::StreamBuffer const result = get(0, i % 2);
                wrongCount += result.getUsed() != result.getSampleCount() * bytesPerSample ? 1U : 0U;
            }
        });
    }
    EXPECT_EQ(wrongCount, 0U);
}

}  // namespace
