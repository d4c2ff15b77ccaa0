/// Shuts down by hand, goes on using what was there before and what comes new, and then ends.
#include "tests/lifetime/TinyMedia.h"
#include "video/QueuePools.h"

int main() {
    tiny::FilePtr const before = tiny::open(L"/dev/null");
    tiny::RequestPtr const finished = tiny::ask(before, 1);
    tiny::await(finished);
    Shutdown::run(Shutdown::normalExit);

    tiny::RequestPtr const late = tiny::ask(before, 2);
    tiny::say("old file: " + tiny::statusOf(late));
    before->limitUsage();
    before->purge();
    PlayFileCache::Shared()->limitUsage();

    tiny::FilePtr const after = tiny::open(L"/dev/zero");
    tiny::RequestPtr const request = tiny::ask(after, 1);
    tiny::await(request);
    tiny::say("new file: " + tiny::statusOf(request));
    tiny::say("free queues: " + std::to_string(videoQueuePool().getFreeCount()));
    Shutdown::run(Shutdown::normalExit);
}
