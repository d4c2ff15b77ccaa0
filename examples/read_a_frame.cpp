/// Reads frame 0 of a file and prints its size:  example_read_a_frame PLUGIN_FOLDER FILE
#include <chrono>
#include <cstdio>
#include <future>

#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "playfile/playfile.h"
#include "toolkit/plugins/Plugin.h"
#include "video/VideoReadRequest.h"

struct Waiter : ReadRequestIssuer {
    ~Waiter() override { withdraw(); }
    void requestCompleted(Ox::Ptr<iObject>&, RequestStatus status) override { end.set_value(status); }

    // Who joins a read that is just ending or has failed isn't called, so the status is looked at, too.
    RequestStatus waitFor(VideoReadRequest const& request) {
        std::future<RequestStatus> called = end.get_future();
        while (called.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready) {
            RequestStatus const status = request.getRequestStatus();
            if (status == requestComplete || status == requestFailed) {
                return status;
            }
        }
        return called.get();
    }
    std::promise<RequestStatus> end;
};

int main(int argc, char** argv) {
    loadPlugins(fromUTF8(argc == 3 ? argv[1] : ""));
    Cookie const clip(Ox::UUID::generate(), 'V', 0);
    MemoryCatalogue::instance().add(clip, fromUTF8(argc == 3 ? argv[2] : ""));

    Waiter waiter;
    Ox::Ptr<VideoReadRequest> request;
    OxResult const result = PlayFileCache::Shared()->videoReadRequest(
        request, clip, 0, false, resultDecompressed, DecodeFormat::getDefault(), waiter.getProxy());
    bool isRead = false;
    Ox::Image::Surface picture;
    if (result == oxSuccess && waiter.waitFor(*request) == requestComplete) {
        request->getResultBuffer()->getSurface(0, picture);
        // A file may be decoded in runs: then the read ends before its picture is there, if it ever comes.
        bool const isFinished = picture.wait(iThreadEvent::noTimeLimit) == Ox::Image::Surface::waitFinished;
        isRead = isFinished && picture.valid();
    }
    if (isRead) {
        std::printf("frame 0 is %u x %u\n", picture.getWidth(), picture.getHeight());
    }
    playfile_exit();
    return isRead ? 0 : 1;
}
