/// Ends in the way that the second argument names while the FFmpeg reader decodes the clip that the first one names:
/// "return", "exit", "thread", "dropped", "closed" (after the exit of the library), "static" (with pictures held past
/// main), "shutdown" (by hand, and reads on).
#include <cstdlib>
#include <map>
#include <string>
#include <thread>

#include "host/memory/MemoryCatalogue.h"
#include "playfile/playfile.h"
#include "tests/lifetime/TinyMedia.h"
#include "toolkit/plugins/Plugin.h"
#include "video/FilePreOpen.h"

namespace {

using tiny::RequestPtr;

Cookie const clip(Ox::UUID::generate(), 'V', 0);

RequestPtr ask(int frame) {
    RequestPtr request;
    OxResult const result = PlayFileCache::Shared()->videoReadRequest(request, clip, frame, false,
                                                                      resultDecompressed, DecodeFormat(), {});
    return result == oxSuccess ? request : RequestPtr();
}

/// Forward, backward and at random, so that runs are begun, continued and left.
std::vector<RequestPtr> askMany() {
    std::vector<RequestPtr> requests;
    for (int const frame : {0, 1, 2, 3, 20, 19, 18, 17, 40, 5, 33, 12}) {
        requests.push_back(ask(frame));
    }
    return requests;
}

/// What static objects hold past main.
std::vector<RequestPtr> held;

void returnWithRequests() {
    std::vector<RequestPtr> const requests = askMany();
    tiny::await(requests.front());
}

void exitWithRequests() {
    held = askMany();
    tiny::await(held.front());
    std::exit(0);
}

void exitFromAnotherThread() {
    std::thread(&exitWithRequests).join();
}

void dropRequests() {
    tiny::await(askMany().front());
}

void exitTheLibraryMeanwhile() {
    std::vector<RequestPtr> const requests = askMany();
    auto const ahead = Ox::PreOpenRequest::create(clip, DecodeFormat(), 0);
    playfile_exit();
    tiny::await(ask(7));
}

void holdPictures() {
    held = askMany();
    for (RequestPtr const& request : held) {
        tiny::await(request);
    }
}

void shutDownByHand() {
    held = askMany();
    Shutdown::run(Shutdown::normalExit);
    tiny::say("late: " + tiny::statusOf(ask(8)));
    playfile_exit();
    RequestPtr const request = ask(9);
    tiny::await(request);
    tiny::say("reopened: " + tiny::statusOf(request));
}

}  // namespace

int main(int, char** arguments) {
    playfile_init();
    loadPlugins(fromUTF8(PLAYFILE_BUILD_PLUGIN_DIR));
    MemoryCatalogue::instance().add(clip, fromUTF8(arguments[1]));
    std::map<std::string, void (*)()> const ways{
        {"return", &returnWithRequests},      {"exit", &exitWithRequests},
        {"thread", &exitFromAnotherThread},   {"dropped", &dropRequests},
        {"closed", &exitTheLibraryMeanwhile}, {"static", &holdPictures},
        {"shutdown", &shutDownByHand},
    };
    ways.at(arguments[2])();
    tiny::say("end of main");
}
