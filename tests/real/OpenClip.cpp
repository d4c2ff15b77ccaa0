#include "tests/real/OpenClip.h"

#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "ole/os/OS.h"
#include "tests/real/Readers.h"
#include "tools/playfile/Md5.h"
#include "tools/playfile/SurfaceSum.h"
#include "video/VideoReadRequest.h"

namespace test {
namespace {

/// Waits for the end of one read and keeps its picture.
class Waiter : public ReadRequestIssuer {
public:
    ~Waiter() override { withdraw(); }
    void requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) override {
        auto const buffer = Ox::dynamicPtrCast<FrameBufferRep>(result);
        if (status == requestComplete && buffer) {
            buffer->getSurface(0, picture_);
        }
        told_->set();
    }
    Ox::Image::Surface waitForPicture() {
        told_->wait(iThreadEvent::noTimeLimit);
        return picture_;
    }

private:
    ThreadEventPtr const told_ = OS()->getThreads().makeEvent(false, false, 0);
    Ox::Image::Surface picture_;
};

}  // namespace

OpenClip::OpenClip(std::string const& path) : cookie_(Ox::UUID::generate(), 'V', 0) {
    loadReaders();
    MemoryCatalogue::instance().add(cookie_, fromUTF8(path.c_str()));
    file_ = PlayFileCache::Shared()->open(cookie_, DecodeFormat::getDefault(), 0);
    if (file_) {
        frameCount_ = file_->metadata->videoSampleCount;
        static_cast<Ox::Image::Core::Data&>(nativeFormat_) = file_->metadata->image;
    }
}

Ox::Image::Surface OpenClip::read(std::uint32_t frame, DecodeFormat const& format) const {
    Waiter waiter;
    Ox::Ptr<VideoReadRequest> request;
    OxResult const result = PlayFileCache::Shared()->videoReadRequest(
        request, cookie_, static_cast<int>(frame), false, resultDecompressed, format, waiter.getProxy());
    return result == oxSuccess ? waiter.waitForPicture() : Ox::Image::Surface();
}

std::string OpenClip::sumOf(std::uint32_t frame) const {
    Ox::Image::Surface const picture = read(frame);
    return picture.valid() ? cli::asHex(cli::sumOf(picture)) : std::string();
}

}  // namespace test
