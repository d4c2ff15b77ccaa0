/// Ends while one frame is being read and the requests behind it have been dropped by their callers.
#include "tests/fakes/Gate.h"
#include "tests/lifetime/TinyMedia.h"

namespace {

tiny::CountsAtTheEnd const countsAtTheEnd;
Gate gate{false};

}  // namespace

int main() {
    tiny::onRead = [] { gate.pass(); };
    {
        tiny::FilePtr const file = tiny::open();
        auto const requests = tiny::askMany(file, 0, 20);
        static_cast<void>(gate.waitForArrivals(1));
    }
    tiny::atShutdown(400, [] { gate.open(); });
}
