#include "tests/real/OpenClip.h"

#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "ole/os/OS.h"
#include "tests/real/Readers.h"
#include "toolkit/services/Settings.h"
#include "tools/playfile/Md5.h"
#include "tools/playfile/SurfaceSum.h"
#include "video/VideoReadRequest.h"

namespace test {
namespace {

/// How long a wait may last before it looks at the request's status.
constexpr std::uint32_t lookIntervalMs = 20;

/// Waits for the end of one read.
class Waiter : public ReadRequestIssuer {
public:
    ~Waiter() override { withdraw(); }
    void requestCompleted(Ox::Ptr<iObject>&, RequestStatus status) override {
        status_ = status;
        told_->set();
    }

    /// Who asks for a frame again while the last read of it ends isn't told; the status says it then.
    [[nodiscard]] RequestStatus waitFor(VideoReadRequest const& request) const {
        while (told_->wait(lookIntervalMs) == iThreadEvent::timedOut) {
            RequestStatus const status = request.getRequestStatus();
            if (status == requestComplete || status == requestFailed) {
                return status;
            }
        }
        return status_;
    }

private:
    RequestStatus status_ = requestBuilt;  ///< Set before the event is.
    ThreadEventPtr const told_ = OS()->getThreads().makeEvent(false, false, 0);
};

}  // namespace

OpenClip::OpenClip(std::string const& path, eNumbering numbering) : cookie_(Ox::UUID::generate(), 'V', 0) {
    loadReaders();
    setConfigInt("useFrameRateMap", numbering == eNumbering::timeline ? 1 : 0);
    MemoryCatalogue::instance().add(cookie_, fromUTF8(path.c_str()));
    file_ = PlayFileCache::Shared()->open(cookie_, DecodeFormat::getDefault(), 0);
    if (file_) {
        frameCount_ = file_->metadata->videoSampleCount;
        static_cast<Ox::Image::Core::Data&>(nativeFormat_) = file_->metadata->image;
    }
}

void OpenClip::setOption(char const* key, char const* value) const {
    configb values;
    values.set(key, value);
    if (file_) {
        file_->setDecodeOptionValues(values);
    }
}

Ox::Image::Surface OpenClip::read(std::uint32_t frame, DecodeFormat const& format) const {
    Waiter waiter;
    Ox::Ptr<VideoReadRequest> request;
    OxResult const result = PlayFileCache::Shared()->videoReadRequest(
        request, cookie_, static_cast<int>(frame), false, resultDecompressed, format, waiter.getProxy());
    Ox::Image::Surface picture;
    if (result == oxSuccess && waiter.waitFor(*request) == requestComplete) {
        request->getResultBuffer()->getSurface(0, picture);
        static_cast<void>(picture.wait(iThreadEvent::noTimeLimit));
    }
    return picture;
}

std::string OpenClip::sumOf(std::uint32_t frame) const {
    Ox::Image::Surface const picture = read(frame);
    return picture.valid() ? cli::asHex(cli::sumOf(picture)) : std::string();
}

}  // namespace test
