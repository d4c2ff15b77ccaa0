#include "bench/support/NullReader.h"

#include "toolkit/image/FrameBufferRep.h"
#include "video/VideoReadRequest.h"

namespace bench {
namespace {

constexpr std::uint32_t pictureSize = 16;

}  // namespace

NullReader::NullReader(LightweightString<wchar_t> const& name)
    : FileReadInstance(name, DecodeFormat::getDefault(), OpenType::video) {
    metadata->videoInfoCount = 1;
    metadata->videoSampleCount = frameCount;
    Ox::Image::Surface const surface(pictureSize, pictureSize, Ox::Image::rgb24, 8, 24,
                                     Ox::Image::layoutTopDown, Ox::Image::allocateOwn, 0);
    picture_ = Ox::makePtr<FrameBufferRep>(surface, 0U);
}

unsigned int NullReader::readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>&) {
    buffer = picture_;
    return frameRead;
}

LightweightString<char> NullReader::getDescription() const {
    return LightweightString<char>("nothing");
}

Ox::Ptr<FileReadInstance> NullReaderInfo::openFile(LightweightString<wchar_t> const& filename,
                                                   DecodeFormat const&, OpenType type) {
    if (type != OpenType::video) {
        return {};
    }
    return Ox::makePtr<NullReader>(filename);
}

bool NullReaderInfo::canOpen(LightweightString<wchar_t> const&, OpenType type) {
    return type == OpenType::video;
}

std::uint32_t NullReaderInfo::getReadableTypes(LightweightString<wchar_t> const&, OpenType,
                                               PlayFileMetadataRep*, Aud::Metadata const&) {
    return static_cast<std::uint32_t>(OpenType::video);
}

}  // namespace bench
