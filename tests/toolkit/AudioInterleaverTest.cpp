#include "toolkit/sound/AudioInterleaver.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/fakes/ByteHolder.h"
#include "toolkit/sound/ByteBufferImpl.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Aud::Metadata format(std::uint32_t channels, std::uint32_t bytesPerSample) {
    Aud::Metadata metadata;
    metadata.channels = channels;
    metadata.bytesPerSample = bytesPerSample;
    metadata.sampleFormat = 77;
    return metadata;
}

/// Random bytes, in a holder that is exactly as large as they are.
Ox::Ptr<ByteHolder> makeBytes(std::size_t count) {
    static std::mt19937 random(4711);
    auto holder = Ox::makePtr<ByteHolder>(static_cast<std::uint32_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        static_cast<std::uint8_t*>(holder->getBuffer())[i] = static_cast<std::uint8_t>(random());
    }
    return holder;
}

Bytes bytesOf(iMemHolder const& holder) {
    auto const* const first = static_cast<std::uint8_t const*>(holder.getBuffer());
    return Bytes(first, first + holder.getUsed());
}

/// One channel, by a loop that nobody can get wrong.
Bytes plainChannel(Bytes const& interleaved, Aud::Metadata const& metadata, std::size_t channel) {
    std::size_t const bytes = metadata.bytesPerSample;
    std::size_t const stride = bytes * metadata.channels;
    Bytes one;
    for (std::size_t sample = 0; sample < interleaved.size() / stride; ++sample) {
        for (std::size_t byte = 0; byte < bytes; ++byte) {
            one.push_back(interleaved[sample * stride + channel * bytes + byte]);
        }
    }
    return one;
}

/// Splits and says whether each channel is what the plain loop makes of it.
bool isSplitRight(std::uint32_t channels, std::uint32_t bytes, std::size_t samples) {
    Aud::Metadata const metadata = format(channels, bytes);
    Ox::Ptr<iMemHolder> const interleaved = makeBytes(samples * channels * bytes);
    Aud::StreamBufferList list;
    if (AudioInterleaver::deinterleaveAudio(metadata, interleaved, list) != 0 || list.size() != channels) {
        return false;
    }
    Bytes const all = bytesOf(*interleaved);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (bytesOf(list[channel]) != plainChannel(all, metadata, channel)) {
            return false;
        }
    }
    return true;
}

/// Every width on its own, as a path of its own serves it.
class InterleavedWidth : public ::testing::TestWithParam<std::uint32_t> {};

INSTANTIATE_TEST_SUITE_P(Bytes, InterleavedWidth, ::testing::Values(1, 2, 3, 4, 5, 6, 7, 8, 9, 16));

TEST_P(InterleavedWidth, IsSplitIntoAnyNumberOfChannels) {
    for (std::uint32_t channels = 1; channels <= 64; ++channels) {
        for (std::size_t const samples : {1U, 4U, 5U, 31U, 33U, 127U}) {
            ASSERT_TRUE(isSplitRight(channels, GetParam(), samples)) << channels << " x " << samples;
        }
    }
}

TEST_P(InterleavedWidth, IsSplitForAnyNumberOfSamples) {
    for (std::uint32_t const channels : {1U, 2U, 3U, 6U}) {
        for (std::size_t samples = 0; samples <= 70; ++samples) {
            ASSERT_TRUE(isSplitRight(channels, GetParam(), samples)) << channels << " x " << samples;
        }
    }
}

TEST_P(InterleavedWidth, IsSplitAcrossManyBlocks) {
    for (std::uint32_t const channels : {1U, 2U, 5U, 64U}) {
        ASSERT_TRUE(isSplitRight(channels, GetParam(), 10007)) << channels;
    }
}

TEST_P(InterleavedWidth, IsSplitWhereARowIsLargerThanABlock) {
    ASSERT_TRUE(isSplitRight(20000, GetParam(), 19));
}

class InterleaverTest : public ::testing::Test {
protected:
    std::uint32_t split(Aud::Metadata const& metadata, Ox::Ptr<iMemHolder> const& interleaved) {
        return AudioInterleaver::deinterleaveAudio(metadata, interleaved, list);
    }
    Aud::StreamBufferList list;
};

TEST_F(InterleaverTest, SetsUsedSizesCountsAndFormats) {
    EXPECT_EQ(split(format(3, 4), makeBytes(120)), 0U);
    EXPECT_EQ(list.sampleCount, 10U);
    EXPECT_EQ(list.format, 77U);
    for (Aud::StreamBuffer const& buffer : list) {
        EXPECT_EQ(buffer.getUsed(), 40U);
        EXPECT_EQ(buffer.getSampleCount(), 10U);
        EXPECT_EQ(buffer.getSampleFormat(), 77U);
    }
}

TEST_F(InterleaverTest, PassesOverBytesBehindTheLastWholeSample) {
    Ox::Ptr<iMemHolder> const interleaved = makeBytes(119);
    EXPECT_EQ(split(format(3, 4), interleaved), 0U);
    EXPECT_EQ(list.sampleCount, 9U);
    EXPECT_EQ(bytesOf(list[2]), plainChannel(bytesOf(*interleaved), format(3, 4), 2));
}

TEST_F(InterleaverTest, TakesTheUsedBytesAndNotTheCapacity) {
    Ox::Ptr<ByteHolder> const interleaved = makeBytes(120);
    interleaved->setUsed(48);
    split(format(3, 4), interleaved);
    EXPECT_EQ(list.sampleCount, 4U);
}

TEST_F(InterleaverTest, MakesBuffersOfNoSamplesOfNothing) {
    EXPECT_EQ(split(format(3, 4), Ox::makePtr<ByteBufferImpl>(0U)), 0U);
    EXPECT_EQ(list.size(), 3U);
    EXPECT_EQ(list.sampleCount, 0U);
    EXPECT_TRUE(list[0].getHolder());
    EXPECT_EQ(list[0].getUsed(), 0U);
}

TEST_F(InterleaverTest, FillsTheBuffersThatAreThereFromTheirStart) {
    auto const room = Ox::makePtr<ByteBufferImpl>(500U);
    room->setUsed(123);
    list.push_back({room, 9, true, 4711, 5});
    Ox::Ptr<iMemHolder> const interleaved = makeBytes(120);
    split(format(3, 4), interleaved);
    EXPECT_EQ(list[0].getHolder(), room);
    EXPECT_EQ(list[0].getTag(), 9U);
    EXPECT_TRUE(list[0].getFlag());
    EXPECT_EQ(list[0].getSampleCount(), 10U);
    EXPECT_EQ(bytesOf(list[0]), plainChannel(bytesOf(*interleaved), format(3, 4), 0));
    EXPECT_EQ(list[0].getSize(), 500U);
}

TEST_F(InterleaverTest, ReplacesABufferThatIsTooSmall) {
    auto const small = Ox::makePtr<ByteBufferImpl>(39U);
    auto const justRight = Ox::makePtr<ByteBufferImpl>(40U);
    list.push_back({small, 0});
    list.push_back({justRight, 0});
    split(format(2, 4), makeBytes(80));
    EXPECT_NE(list[0].getHolder(), small);
    EXPECT_EQ(list[1].getHolder(), justRight);
    EXPECT_EQ(small->getUsed(), 0U);
}

TEST_F(InterleaverTest, ReplacesAViewOfAnotherBuffer) {
    auto const source = Ox::makePtr<ByteBufferImpl>(500U);
    list.push_back({Ox::makePtr<MemRef>(source, 0U, 500U), 0});
    split(format(2, 4), makeBytes(80));
    EXPECT_EQ(list[0].getUsed(), 40U);
}

TEST_F(InterleaverTest, DropsBuffersOfMoreChannelsThanThereAre) {
    list.resize(8);
    split(format(2, 4), makeBytes(80));
    EXPECT_EQ(list.size(), 2U);
}

/// What can't be split leaves the list as it is.
class UnsplittableTest : public InterleaverTest {
protected:
    UnsplittableTest() {
        list.resize(5);
        list.sampleCount = 4711;
    }
    ~UnsplittableTest() override {
        EXPECT_EQ(list.size(), 5U);
        EXPECT_EQ(list.sampleCount, 4711U);
        EXPECT_EQ(list.format, Aud::StreamBufferList::noFormat);
    }
};

TEST_F(UnsplittableTest, IsAFormatWithoutChannelsOrBytes) {
    EXPECT_EQ(split(format(0, 4), makeBytes(80)), AudioInterleaver::badFormat);
    EXPECT_EQ(split(format(2, 0), makeBytes(80)), AudioInterleaver::badFormat);
}

TEST_F(UnsplittableTest, IsAHolderThatIsNotThere) {
    EXPECT_EQ(split(format(2, 4), nullptr), AudioInterleaver::noData);
}

TEST(StreamBufferList, HasNoSamplesAndNoFormatAtFirst) {
    Aud::StreamBufferList const list;
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.sampleCount, 0U);
    EXPECT_EQ(list.format, 0xFFFFFFFFU);
}

TEST(StreamBufferList, SharesTheMemoryOfItsCopies) {
    Aud::StreamBufferList list;
    list.push_back({makeBytes(4), 0});
    list.sampleCount = 2;
    Aud::StreamBufferList const copy = list;
    EXPECT_EQ(copy[0].getHolder(), list[0].getHolder());
    EXPECT_EQ(copy.sampleCount, 2U);
}

}  // namespace
