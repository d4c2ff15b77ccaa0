/// Ends while one frame is being read and the requests behind it have been dropped by their callers.
#include "tests/lifetime/TinyMedia.h"
#include "tests/support/Gate.h"

namespace {

tiny::CountsAtTheEnd const countsAtTheEnd;
test::Gate gate;

}  // namespace

int main() {
    tiny::onRead = [] { gate.pass(); };
    {
        tiny::FilePtr const file = tiny::open();
        auto const requests = tiny::askMany(file, 0, 20);
        gate.awaitArrivals(1);
    }
    tiny::atShutdown(400, [] { gate.open(); });
}
