#include "plugins/ffmpeg/FrameMemory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <utility>

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int usualSamples = 1024;

AvPtr<AVFrame> frameWith(FrameMemory& memory, int samples = usualSamples, int channels = 2) {
    AvPtr<AVFrame> frame = makeFrame();
    frame->format = AV_SAMPLE_FMT_FLTP;
    frame->nb_samples = samples;
    av_channel_layout_default(&frame->ch_layout, channels);
    EXPECT_TRUE(memory.giveTo(*frame));
    return frame;
}

/// The piece that a frame has.
AvPtr<AVBufferRef> pieceOf(AVFrame& frame) {
    return AvPtr<AVBufferRef>(std::exchange(frame.buf[0], nullptr));
}

TEST(FrameMemory, GivesEachChannelItsOwnPlane) {
    FrameMemory memory;
    AvPtr<AVFrame> const frame = frameWith(memory);
    size_t const planeBytes = usualSamples * sizeof(float);
    std::memset(frame->extended_data[0], 1, planeBytes);
    std::memset(frame->extended_data[1], 2, planeBytes);
    EXPECT_EQ(frame->extended_data[0][planeBytes - 1], 1);
    EXPECT_GE(frame->buf[0]->size, 2 * planeBytes);
}

TEST(FrameMemory, UsesAgainWhatItGotBack) {
    FrameMemory memory;
    AvPtr<AVFrame> const first = frameWith(memory);
    uint8_t const* const data = first->buf[0]->data;
    memory.takeBack(pieceOf(*first));
    EXPECT_EQ(frameWith(memory)->buf[0]->data, data);
}

TEST(FrameMemory, UsesWhatHasBeenFreeLongestFirst) {
    FrameMemory memory;
    AvPtr<AVFrame> const first = frameWith(memory);
    AvPtr<AVFrame> const second = frameWith(memory);
    uint8_t const* const data = first->buf[0]->data;
    memory.takeBack(pieceOf(*first));
    memory.takeBack(pieceOf(*second));
    EXPECT_EQ(frameWith(memory)->buf[0]->data, data);
}

TEST(FrameMemory, LeavesAloneWhatSomebodyElseStillHolds) {
    FrameMemory memory;
    AvPtr<AVFrame> const frame = frameWith(memory);
    AvPtr<AVFrame> const other(av_frame_clone(frame.get()));
    memory.takeBack(pieceOf(*frame));
    EXPECT_NE(frameWith(memory)->buf[0]->data, other->buf[0]->data);
}

TEST(FrameMemory, GivesNoPieceOfAnotherSize) {
    FrameMemory memory;
    AvPtr<AVFrame> const small = frameWith(memory, 100);
    memory.takeBack(pieceOf(*small));
    EXPECT_GE(frameWith(memory, 2000)->buf[0]->size, 2000 * 2 * sizeof(float));
}

TEST(FrameMemory, KeepsNoPieceOfAnEarlierSize) {
    FrameMemory memory;
    AvPtr<AVFrame> const small = frameWith(memory, 100);
    AvPtr<AVFrame> const large = frameWith(memory, 2000);
    memory.takeBack(pieceOf(*small));
    EXPECT_GE(frameWith(memory, 2000)->buf[0]->size, 2000 * 2 * sizeof(float));
}

TEST(FrameMemory, OutlivedByAFrameThatIsInUse) {
    auto memory = std::make_unique<FrameMemory>();
    AvPtr<AVFrame> const frame = frameWith(*memory);
    memory.reset();
    std::memset(frame->extended_data[1], 7, usualSamples * sizeof(float));
    EXPECT_EQ(frame->extended_data[1][0], 7);
}

TEST(FrameMemory, DoesWithoutThePieceOfAFrameThatHadNone) {
    FrameMemory memory;
    memory.takeBack(nullptr);
    EXPECT_NE(frameWith(memory)->buf[0], nullptr);
}

TEST(FrameMemory, SaysWhenAFrameHasNoSamples) {
    FrameMemory memory;
    AvPtr<AVFrame> const frame = makeFrame();
    EXPECT_FALSE(memory.giveTo(*frame));
}

}  // namespace
}  // namespace test
