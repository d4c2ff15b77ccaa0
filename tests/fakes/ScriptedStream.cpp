#include "tests/fakes/ScriptedStream.h"

#include <cstring>

#include "tests/fakes/ByteHolder.h"

namespace {

constexpr std::uint32_t width = 4;
constexpr std::uint32_t height = 2;

}  // namespace

ScriptedStream::ScriptedStream(unsigned runLength, bool isStreaming)
    : StreamingDecodeReader(L"/stream.mov", DecodeFormat(), OpenType::video), runLength_(runLength) {
    metadata->videoSampleCount = 100000;
    metadata->videoInfoCount = 1;
    metadata->image.setWidth(width);
    metadata->image.setHeight(height);
    metadata->image.setDataFormat(Ox::Image::gray8);
    metadata->setReadStreaming(isStreaming);
}

ScriptedStream::~ScriptedStream() {
    endStreamDecode();
}

unsigned int ScriptedStream::decodeFrames(Ox::Ptr<FrameBufferRep>& batch, unsigned int startFrame) {
    batchGate.pass();
    {
        std::lock_guard const scope(lock_);
        decoded_.push_back({startFrame, batch->getNumFrames()});
    }
    for (std::uint32_t index = 0; index < batch->getNumFrames(); ++index) {
        frameGate.pass();
        unsigned const frame = startFrame + index;
        Ox::Image::Surface surface;
        batch->getSurface(static_cast<std::uint16_t>(index), surface);
        if (isForgotten(frame)) {
            continue;
        }
        if (!fails(frame)) {
            auto const pixels = Ox::makePtr<ByteHolder>(width * height);
            std::memcpy(pixels->getBuffer(), &frame, sizeof(frame));
            surface.setDataPtr(pixels);
        }
        if (!isSetLate) {
            surface.set();
        }
    }
    return 0;
}

unsigned int ScriptedStream::readVideoDirect(Ox::Ptr<FrameBufferRep>&, Ox::Ptr<VideoReadRequest>&) {
    ++directReads_;
    return directAnswer;
}

void ScriptedStream::getDecodeRange(unsigned int frame, unsigned int& start, unsigned int& end) {
    if (range) {
        range(frame, start, end);
        return;
    }
    start = frame - frame % runLength_;
    end = start + runLength_;
}

std::vector<ScriptedStream::Batch> ScriptedStream::decoded() const {
    std::lock_guard const scope(lock_);
    return decoded_;
}

std::uint32_t numberIn(Ox::Image::Surface const& surface) {
    std::uint32_t number = 0xFFFFFFFF;
    if (surface.valid()) {
        std::memcpy(&number, surface.getPlane(0).data, sizeof(number));
    }
    return number;
}
