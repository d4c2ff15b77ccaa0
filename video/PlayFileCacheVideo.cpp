/// The road of a frame from the caller's call to the file's queue.
#include "files/PlayFileCache.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "video/VideoReadRequest.h"

namespace {

/// The clip's frame in the numbering of its file's time line. Half the offset counts, truncated toward
/// zero; the sum wraps as 32-bit numbers do.
std::int32_t positionOf(Cookie const& cookie, int frame) {
    std::int32_t const offset = MaterialInfo::get_start_offset(cookie) / 2;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(frame) + static_cast<std::uint32_t>(offset));
}

/// A file with a map takes any position; a file of one frame any that isn't negative.
bool isInRange(PlayFileMetadataRep const& metadata, std::int32_t position) {
    if (metadata.frameRateMap) {
        return true;
    }
    std::uint32_t const count = metadata.videoSampleCount;
    return position >= 0 && (count == 1 || static_cast<std::uint32_t>(position) < count);
}

/// Serves the poster at once, on this thread, without the reader. The issuer may let go of the request while
/// it is told. Answers what the trace calls it.
std::uint64_t completePosterRequest(Ox::Ptr<VideoReadRequest>& request, Ox::Ptr<FileReadInstance>& file,
                                    eResultType resultType, DecodeFormat const& format,
                                    Ox::Ptr<ReadRequestIssuer::Proxy> const& issuer) {
    Ox::Ptr<IndexInfoRep> noIndexInfo;
    auto const own = Ox::makePtr<VideoReadRequest>(file, noIndexInfo, 0U, resultType, format, issuer);
    request = own;
    Ox::Image::Surface const poster(file->metadata->posterSurface);
    auto const buffer = Ox::makePtr<FrameBufferRep>(poster, 0U);
    stampBuffer(*buffer, *own);
    buffer->setDecompressComplete(FrameBufferRep::done);
    own->setResultBuffer(buffer);
    own->requestHasCompleted(requestComplete);
    return own->number;
}

}  // namespace

OxResult PlayFileCache::videoReadRequest(Ox::Ptr<VideoReadRequest>& request, Cookie const& cookie, int frame,
                                         bool /*ignored*/, eResultType resultType, DecodeFormat const& format,
                                         Ox::Ptr<ReadRequestIssuer::Proxy> issuer) {
    TraceSlice slice(VideoReadRequest::traceCategory, "videoReadRequest");
    slice.with("frame", frame);
    Ox::Ptr<FileReadInstance> file = Shared()->open(cookie, format, static_cast<unsigned int>(frame));
    std::int32_t const position = positionOf(cookie, frame);
    if (!file) {
        return oxFrameNotAvailable;
    }
    slice.of(file->filename);
    if (position == 0 && file->metadata->posterSurface.valid()) {
        slice.about(completePosterRequest(request, file, resultType, format, issuer));
        return oxSuccess;
    }
    if (!isInRange(*file->metadata, position)) {
        return oxFrameNotAvailable;
    }
    std::uint32_t const fileFrame =
        static_cast<std::uint32_t>(position) + static_cast<std::uint32_t>(file->getVideoOrigin());
    Ox::Ptr<IndexInfoRep> indexInfo;
    file->OxFileIxCache_open(indexInfo, fileFrame);
    request = Ox::makePtr<VideoReadRequest>(file, indexInfo, fileFrame, resultType, format, issuer);
    slice.about(request->number);
    return file->queueReadRequest(request);
}
