/// Runs of frames, as a decoder fills them in.
#include <gtest/gtest.h>

#include "video/StreamingDecodeReader.h"

namespace {

using Surface = Ox::Image::Surface;

class FrameRun : public ::testing::Test {
protected:
    Ox::Ptr<PlayFileMetadataRep> metadata =
        Ox::makePtr<PlayFileMetadataRep>(LightweightString<wchar_t>(L"x"));
};

using FramePresent = FrameRun;

TEST_F(FramePresent, IsInsideTheBatchOnly) {
    auto batch = Ox::makePtr<FrameBufferRep>(metadata, 10U, 12U, FrameBufferRep::withEvents);
    EXPECT_FALSE(StreamingDecodeReader::framePresent(batch, 9));
    EXPECT_TRUE(StreamingDecodeReader::framePresent(batch, 10));
    EXPECT_TRUE(StreamingDecodeReader::framePresent(batch, 12));
    EXPECT_FALSE(StreamingDecodeReader::framePresent(batch, 13));
}

TEST_F(FramePresent, NothingIsInAnEmptyBatch) {
    Ox::Ptr<FrameBufferRep> none;
    EXPECT_FALSE(StreamingDecodeReader::framePresent(none, 0));
}

TEST_F(FrameRun, HasTheLastFrameToo) {
    EXPECT_EQ(FrameBufferRep(metadata, 10, 12, FrameBufferRep::withEvents).getNumFrames(), 3U);
    EXPECT_EQ(FrameBufferRep(metadata, 10, 10, FrameBufferRep::withEvents).getNumFrames(), 1U);
}

TEST_F(FrameRun, BeginsWithoutPixelsAndUnfinished) {
    FrameBufferRep const run(metadata, 0, 1, FrameBufferRep::withEvents);
    Surface surface;
    ASSERT_TRUE(run.getSurface(1, surface));
    EXPECT_FALSE(surface.valid());
    EXPECT_EQ(surface.wait(0), Surface::waitTimedOut);
}

TEST_F(FrameRun, WithoutEventsNobodyWaits) {
    FrameBufferRep const run(metadata, 0, 1, FrameBufferRep::withoutEvents);
    Surface surface;
    ASSERT_TRUE(run.getSurface(0, surface));
    EXPECT_EQ(surface.wait(0), Surface::waitFinished);
}

TEST_F(FrameRun, IsHeldToWhatAnIndexCanSay) {
    EXPECT_EQ(FrameBufferRep(metadata, 0, 99999, FrameBufferRep::withoutEvents).getNumFrames(), 65536U);
    EXPECT_EQ(FrameBufferRep(metadata, 5, 3, FrameBufferRep::withoutEvents).getNumFrames(), 65536U);
}

TEST_F(FrameRun, WaitsForDecompression) {
    EXPECT_EQ(FrameBufferRep(metadata, 0, 1, FrameBufferRep::withEvents).decompressStatus, 1U);
}

}  // namespace
