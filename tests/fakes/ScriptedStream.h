#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "tests/fakes/Gate.h"
#include "video/StreamingDecodeReader.h"

/// A file that is read streaming and does what a test says.
///
/// Each frame that is decoded shows 4 x 2 gray pixels that hold its number; decoding waits at gates.
///
/// Threads  Its settings are made before it is used.
class ScriptedStream : public StreamingDecodeReader {
public:
    using StreamingDecodeReader::readVideo;

    /// What a batch was made of.
    struct Batch {
        std::uint32_t start;
        std::uint32_t count;
        friend bool operator==(Batch const&, Batch const&) = default;
    };

    /// @param runLength  frames of a run, which begins at a multiple of it
    explicit ScriptedStream(unsigned runLength = 4, bool isStreaming = true);
    ~ScriptedStream() override;

    [[nodiscard]] LightweightString<char> getDescription() const override { return "scripted stream"; }
    unsigned int decodeFrames(Ox::Ptr<FrameBufferRep>& batch, unsigned int startFrame) override;
    unsigned int readVideoDirect(Ox::Ptr<FrameBufferRep>& buffer,
                                 Ox::Ptr<VideoReadRequest>& request) override;
    void getDecodeRange(unsigned int frame, unsigned int& start, unsigned int& end) override;

    /// Where the decoder waits before it begins a batch, and before each frame.
    Gate batchGate{true};
    Gate frameGate{true};
    /// Says which run holds a frame, in place of the usual rule.
    std::function<void(unsigned frame, unsigned& start, unsigned& end)> range;
    /// Frames that get no pixels, and those that aren't even finished.
    std::function<bool(unsigned frame)> fails = [](unsigned) { return false; };
    std::function<bool(unsigned frame)> isForgotten = [](unsigned) { return false; };
    /// All frames get their pixels and none is finished.
    bool isSetLate = false;
    unsigned directAnswer = frameRead;

    [[nodiscard]] std::vector<Batch> decoded() const;
    [[nodiscard]] unsigned directReads() const { return directReads_; }
    [[nodiscard]] bool hasBegun() const { return static_cast<bool>(wakeEvent); }
    /// Wakes the decoder without a new batch.
    void wake() { wakeEvent->set(); }
    /// Waits until the decoder has nothing to do.
    void waitUntilIdle() { idleEvent->wait(iThreadEvent::noTimeLimit); }
    [[nodiscard]] Ox::Ptr<FrameBufferRep> current() const { return currentBatch; }
    [[nodiscard]] Ox::Ptr<FrameBufferRep> previous() const { return previousBatch; }
    [[nodiscard]] std::int64_t position() const { return streamPosition; }

private:
    unsigned const runLength_;
    std::atomic<unsigned> directReads_{0};
    mutable std::mutex lock_;
    std::vector<Batch> decoded_;
};

/// The number that such a frame shows; nothing without pixels.
[[nodiscard]] std::uint32_t numberIn(Ox::Image::Surface const& surface);
