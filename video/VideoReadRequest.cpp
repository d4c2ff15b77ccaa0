#include "video/VideoReadRequest.h"

#include "toolkit/plugins/DecoderInfo.h"

namespace {

/// Takes the right to decompress a buffer; only one completion ever gets it.
bool claimDecompression(FrameBufferRep& buffer) {
    std::uint32_t expected = FrameBufferRep::waiting;
    return buffer.decompressStatus.compare_exchange_strong(expected, FrameBufferRep::claimed);
}

bool hasEnded(RequestStatus status) {
    return status == requestComplete || status == requestFailed;
}

}  // namespace

VideoReadRequest::VideoReadRequest(Ox::Ptr<FileReadInstance>& requestedFile,
                                   Ox::Ptr<IndexInfoRep>& requestedIndexInfo, unsigned int requestedFrame,
                                   eResultType requestedResultType, DecodeFormat const& format,
                                   Ox::Ptr<ReadRequestIssuer::Proxy> issuer)
    : DecodeFormat(format),
      frame(requestedFrame),
      indexInfo(requestedIndexInfo),
      issuers(issuer, number),
      resultType(requestedResultType),
      file(requestedFile) {
    PlayFileTrace::step(TraceEvent::requestBegins, traceCategory, traceName, number, {"frame", frame});
}

void VideoReadRequest::requestHasCompleted(RequestStatus status) {
    RequestStatus const before = getRequestStatus();
    if (status == requestComplete && before != requestComplete) {
        if (!resultBuffer_) {
            status = requestFailed;
        } else if (claimDecompression(*resultBuffer_)) {
            status = decompressResult();
        }
    }
    if (!issuers.empty()) {
        Ox::Ptr<iObject> result(resultBuffer_);
        issuers.doCallbacks(result, status);
    }
    setRequestStatus(status);
    if (!hasEnded(before)) {
        PlayFileTrace::step(TraceEvent::requestEnds, traceCategory, traceName, number, {"status", status});
    }
}

/// Does what is left to do of a buffer that was claimed: nothing more than giving the claim back if the
/// receiver decompresses.
RequestStatus VideoReadRequest::decompressResult() {
    stampBuffer(*resultBuffer_, *this);
    if (resultType == resultAsDelivered) {
        resultBuffer_->decompressStatus.store(FrameBufferRep::waiting);
        return requestComplete;
    }
    Ox::Ptr<iVideoDecoder> const decoder =
        Ox::DecoderInfo::instance().getDecoderFor(resultBuffer_->getVideoDecompressionInfo());
    TraceSlice slice(traceCategory, "decode", number);
    slice.with("frame", frame);
    if (decoder && decoder->decompress(resultBuffer_) == 1) {
        return requestComplete;
    }
    resultBuffer_->setDecompressComplete(FrameBufferRep::failed);
    return requestFailed;
}

Ox::Ptr<FrameBufferRep> VideoReadRequest::setUncompressedResult(Ox::Ptr<iMemHolder> memory) {
    PlayFileMetadataRep const& metadata = *file->metadata;
    Ox::Image::Core::Data const& image = metadata.image;
    Ox::Image::Surface surface(image.getWidth(), image.getHeight(), image.getDataFormat(),
                               image.getBitsPerComponent(), image.getBitsPerPixel(), Ox::Image::layoutTopDown,
                               Ox::Image::showForeignMemory, metadata.bufferFormat.stride);
    surface.setVideoData(metadata.videoData);
    surface.setFormatUID(metadata.formatUID);
    surface.setSampleData(metadata.sampleData);
    surface.setDataPtr(memory);
    surface.setOrientation(metadata.orientation);
    resultBuffer_ = Ox::makePtr<FrameBufferRep>(surface, frame);
    resultBuffer_->setDecompressComplete(FrameBufferRep::done);
    return resultBuffer_;
}

/// The setters come first, as a buffer may have its own idea of them, and then the members themselves.
void stampBuffer(FrameBufferRep& buffer, DecodeFormat const& format) {
    DecodeFormat& stamped = buffer.decodeFormat;
    stamped.setWidth(format.getWidth());
    stamped.setHeight(format.getHeight());
    stamped.setDataFormat(format.getDataFormat());
    stamped.setBitsPerComponent(format.getBitsPerComponent());
    stamped.setBitsPerPixel(format.getBitsPerPixel());
    stamped.setLayout(format.getLayout());
    stamped.setCoreDataSet(format.getCoreDataSet());
    stamped = format;
}
