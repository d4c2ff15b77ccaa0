/// Lets the worker of a file's own queue be the last to let go of the file: with the pool of queues
/// open ("open"), shut by hand ("shut"), or while the process ends ("exit").
#include <string_view>

#include "tests/fakes/Gate.h"
#include "tests/lifetime/TinyMedia.h"
#include "video/QueuePools.h"

namespace {

Gate gate{false};
Gate fileGone{false};

/// Tells of its end.
class WatchedFile : public tiny::File {
public:
    using tiny::File::File;
    ~WatchedFile() override {
        tiny::say("file gone");
        fileGone.open();
    }
};

/// Leaves the worker, inside a read, with the only reference to the file.
void leaveFileToItsWorker() {
    tiny::onRead = [] { gate.pass(); };
    tiny::FilePtr const file(new WatchedFile(L"/dev/null", DecodeFormat(), OpenType::video));
    tiny::RequestPtr const request = tiny::ask(file, 1);
    static_cast<void>(gate.waitForArrivals(1));
    file->purge();
}

}  // namespace

int main(int, char** arguments) {
    std::string_view const how(arguments[1]);
    if (how == "shut") {
        Shutdown::run(Shutdown::normalExit);
    }
    leaveFileToItsWorker();
    if (how == "exit") {
        tiny::atShutdown(400, [] { gate.open(); });
        return 0;
    }
    gate.open();
    fileGone.pass();
    tiny::RequestPtr const another = tiny::ask(tiny::open(), 1);
    tiny::await(another);
    tiny::say(tiny::statusOf(another));
}
