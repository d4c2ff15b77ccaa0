/// The reads of a long-GOP file: batches of frames, decoded on a thread of their own.
#include <exception>

#include "plugins/ffmpeg/FFmpegReader.h"
#include "plugins/ffmpeg/MetadataWriter.h"
#include "plugins/ffmpeg/PictureSurface.h"
#include "plugins/ffmpeg/WantedShape.h"
#include "toolkit/services/Log.h"
#include "video/VideoReadRequest.h"

namespace playfile_ffmpeg {
namespace {

bool isFinished(Ox::Image::Surface const& surface) {
    return surface.wait(0) == Ox::Image::Surface::waitFinished;
}

Ox::Image::Surface surfaceAt(FrameBufferRep const& batch, std::uint32_t index) {
    Ox::Image::Surface surface;
    batch.getSurface(static_cast<std::uint16_t>(index), surface);
    return surface;
}

/// Leaves every surface of a batch finished, whatever happens: others wait for them without a limit.
class FinishedBatch {
public:
    explicit FinishedBatch(FrameBufferRep const& batch) : batch_(batch) {}
    ~FinishedBatch() {
        for (std::uint32_t index = 0; index < batch_.getNumFrames(); ++index) {
            surfaceAt(batch_, index).set();
        }
    }
    FinishedBatch(FinishedBatch const&) = delete;
    FinishedBatch& operator=(FinishedBatch const&) = delete;

private:
    FrameBufferRep const& batch_;
};

/// The frames of a batch that have to be decoded, the one that was asked for first.
std::vector<std::uint32_t> framesInTurn(FrameBufferRep const& batch, std::uint32_t wanted) {
    std::uint32_t const first = batch.getStartValidFrameIndex();
    std::uint32_t const end = first + batch.getNumFrames();
    std::uint32_t const begin = wanted >= first && wanted < end ? wanted : first;
    std::vector<std::uint32_t> frames;
    for (std::uint32_t frame = begin; frame < end; ++frame) {
        frames.push_back(frame);
    }
    for (std::uint32_t frame = begin; frame > first; --frame) {
        frames.push_back(frame - 1);
    }
    std::erase_if(frames, [&](std::uint32_t frame) { return isFinished(surfaceAt(batch, frame - first)); });
    return frames;
}

}  // namespace

unsigned int FFmpegReader::readVideoStreaming(Ox::Ptr<FrameBufferRep>& buffer,
                                              Ox::Ptr<VideoReadRequest>& request) {
    if (request->frame >= frameCount()) {
        return readVideoDirect(buffer, request);
    }
    pattern_.note(request->frame);
    letBatchEndBefore(request->frame);
    static_cast<void>(StreamingDecodeReader::readVideoStreaming(buffer, request));
    return wantedShape(*request, ownShape()) == ownShape() ? frameRead : convert(buffer, *request);
}

/// The decoder is never woken for a batch that it is about to begin anyhow.
void FFmpegReader::letBatchEndBefore(std::uint32_t frame) {
    bool const isHeld = framePresent(currentBatch, frame) || framePresent(previousBatch, frame);
    if (currentBatch && !isHeld) {
        Ox::Image::Surface const last = surfaceAt(*currentBatch, currentBatch->getNumFrames() - 1);
        static_cast<void>(last.wait(iThreadEvent::noTimeLimit));
    }
}

/// Batches are in the file's own size and format. Who wants another waits for the frame and gets it made
/// of that, while the decoder goes on.
unsigned int FFmpegReader::convert(Ox::Ptr<FrameBufferRep>& buffer, VideoReadRequest const& request) {
    try {
        Ox::Image::Surface const surface = surfaceAt(*buffer, 0);
        static_cast<void>(surface.wait(iThreadEvent::noTimeLimit));
        PicturePtr const picture = pictureOf(surface);
        return picture ? answer(buffer, request, picture) : noFrame;
    } catch (std::exception const& exception) {
        logFailure(request.frame, exception);
        return noFrame;
    }
}

void FFmpegReader::getDecodeRange(unsigned int frame, unsigned int& start, unsigned int& end) {
    FrameRun run = pattern_.run(decoder_->room(), frameCount());
    std::uint32_t first = frame;
    while (first > run.first && decoder_->comesWith(storedFrame(first - 1), storedFrame(frame))) {
        --first;
    }
    start = first;
    end = run.end;
    std::lock_guard const scope(planLock_);
    plannedFor_ = pattern_;
}

ReadPattern FFmpegReader::plannedPattern() {
    std::lock_guard const scope(planLock_);
    return plannedFor_;
}

unsigned int FFmpegReader::decodeFrames(Ox::Ptr<FrameBufferRep>& batch, unsigned int startFrame) {
    FinishedBatch const finished(*batch);
    try {
        ReadPattern const pattern = plannedPattern();
        std::vector<std::uint32_t> const frames = framesInTurn(*batch, pattern.last());
        std::vector<std::uint32_t> stored;
        stored.reserve(frames.size());
        for (std::uint32_t const frame : frames) {
            stored.push_back(storedFrame(frame));
        }
        decoder_->decode(stored, pattern, [&](std::size_t position, PicturePtr const& picture) {
            Ox::Image::Surface surface = surfaceAt(*batch, frames[position] - startFrame);
            show(surface, stored[position], picture);
            surface.set();
        });
        return frameRead;
    } catch (std::exception const& exception) {
        logFailure(startFrame, exception);
        return noFrame;
    }
}

/// A stream may change its size or format on the way; a batch doesn't.
void FFmpegReader::show(Ox::Image::Surface& surface, std::uint32_t stored, PicturePtr picture) {
    if (picture && !(shapeOf(*picture) == ownShape())) {
        picture = batchConverter_.convert(*picture, ownShape(), assumedMatrix());
    }
    if (picture) {
        FrameFetcher const& file = decoder_->file();
        showIn(surface, picture, file.facts(), timeOfFrame(file, stored));
    }
}

PictureShape FFmpegReader::ownShape() const {
    StreamFacts const& facts = decoder_->file().facts();
    return {facts.width, facts.height, facts.pixelFormat};
}

}  // namespace playfile_ffmpeg
