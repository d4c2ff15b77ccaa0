/// Leaves by `exit` while one frame is being read and more wait, which nobody is going to drop:
/// argument "main" or "thread" says from where.
#include <cstdlib>
#include <string_view>
#include <thread>

#include "tests/fakes/Gate.h"
#include "tests/lifetime/TinyMedia.h"

namespace {

tiny::CountsAtTheEnd const countsAtTheEnd;
Gate gate{false};

void readAndExit() {
    tiny::onRead = [] { gate.pass(); };
    tiny::FilePtr const file = tiny::open();
    auto const requests = tiny::askMany(file, 0, 20);
    static_cast<void>(gate.waitForArrivals(1));
    tiny::atShutdown(400, [] {
        tiny::say("shutdown");
        gate.open();
    });
    std::exit(0);
}

}  // namespace

int main(int, char** arguments) {
    if (std::string_view(arguments[1]) == "main") {
        readAndExit();
    }
    std::thread(&readAndExit).join();
}
