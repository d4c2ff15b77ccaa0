/// Does steps in the order of the arguments: "init", "exit", "close", "shutdown" (all callbacks of the end), "pools"
/// (the pools of queues alone), "read", "hold" (reads and keeps the request), "ahead" (opens ahead of need).
#include "playfile/playfile.h"

#include <functional>
#include <map>
#include <string_view>

#include "audio/AudioQueuePool.h"
#include "host/memory/MemoryCatalogue.h"
#include "tests/lifetime/TinyMedia.h"
#include "video/FilePreOpen.h"
#include "video/QueuePools.h"

namespace {

tiny::RequestPtr read() {
    tiny::RequestPtr const request = tiny::ask(tiny::open(), 1);
    tiny::await(request);
    tiny::say(tiny::statusOf(request));
    return request;
}

void shutPools() {
    videoQueuePool().shutdown(Shutdown::normalExit);
    audioQueuePool().shutdown(Shutdown::normalExit);
}

void openAhead() {
    Cookie const clip(Ox::UUID::generate(), 'V', 0);
    MemoryCatalogue::instance().add(clip, L"/dev/zero");
    static_cast<void>(tiny::open());
    auto const request = Ox::PreOpenRequest::create(clip, DecodeFormat(), 0);
    while (request->status == requestBuilt) {
        OS()->getThreads().sleep(1);
    }
    tiny::say("ahead: " + std::to_string(request->status));
}

}  // namespace

int main(int count, char** arguments) {
    std::vector<tiny::RequestPtr> held;
    std::map<std::string_view, std::function<void()>> const steps{
        {"init", &playfile_init},
        {"exit", &playfile_exit},
        {"close", &playfile_close_all_files},
        {"shutdown", [] { Shutdown::run(Shutdown::normalExit); }},
        {"pools", &shutPools},
        {"read", [] { static_cast<void>(read()); }},
        {"hold", [&] { held.push_back(read()); }},
        {"ahead", &openAhead},
    };
    for (int i = 1; i < count; ++i) {
        steps.at(arguments[i])();
    }
    tiny::say("open: " + std::to_string(PlayFileCache::Shared()->getOpenCount()));
}
