/// Has a reader that ends the process from inside a read, while more requests wait.
#include <cstdlib>

#include "tests/lifetime/TinyMedia.h"

namespace {

tiny::CountsAtTheEnd const countsAtTheEnd;

}  // namespace

int main() {
    tiny::onRead = [] { std::exit(0); };
    tiny::FilePtr const file = tiny::open();
    auto const requests = tiny::askMany(file, 0, 5);
    ThreadEventPtr const never = OS()->getThreads().makeEvent(true, false, 0);
    never->wait(iThreadEvent::noTimeLimit);
}
