/// Ends in the way that the argument names, while sound is being read or held.
#include <cstdlib>
#include <map>
#include <string>
#include <thread>

#include "audio/AudioQueuePool.h"
#include "tests/fakes/Gate.h"
#include "tests/lifetime/TinySound.h"

namespace {

/// Says, as a static object of the program, what was read before it went.
struct CountsAtTheEnd {
    ~CountsAtTheEnd() { tiny::say("sounds read: " + std::to_string(tiny::soundsRead)); }
} const countsAtTheEnd;

/// What a static object may hold past main.
struct Holder {
    ~Holder() {
        if (request) {
            tiny::say("request: " + tiny::statusOf(request));
        }
    }
    tiny::FilePtr file;
    tiny::SoundRequestPtr request;
} madeBeforeMain;

Gate gate{false};
Gate fileGone{false};

class WatchedSound : public tiny::Sound {
public:
    using tiny::Sound::Sound;
    ~WatchedSound() override {
        tiny::say("file gone");
        fileGone.open();
    }
};

void openGateAtShutdown() {
    tiny::atShutdown(400, [] {
        tiny::say("shutdown");
        gate.open();
    });
}

/// Leaves by `exit` while one request is being read and more wait, which nobody is going to drop.
void exitWithRequests() {
    tiny::onRead = [] { gate.pass(); };
    tiny::FilePtr const file = tiny::openSound();
    auto const requests = tiny::askSounds(file, 20);
    static_cast<void>(gate.waitForArrivals(1));
    openGateAtShutdown();
    std::exit(0);
}

void exitFromAnotherThread() {
    std::thread(&exitWithRequests).join();
}

void exitFromInsideARead() {
    tiny::onRead = [] { std::exit(0); };
    tiny::FilePtr const file = tiny::openSound();
    auto const requests = tiny::askSounds(file, 5);
    Gate never(false);
    never.pass();
}

/// Returns from main with requests that their callers have dropped.
void dropRequests() {
    tiny::onRead = [] { gate.pass(); };
    auto const requests = tiny::askSounds(tiny::openSound(), 20);
    static_cast<void>(gate.waitForArrivals(1));
    openGateAtShutdown();
}

/// Returns from main with a request under way that a static object holds, and with it its file.
void holdARequest() {
    tiny::onRead = [] { gate.pass(); };
    madeBeforeMain.request = tiny::askSound(tiny::openSound(), 0);
    static_cast<void>(gate.waitForArrivals(1));
    openGateAtShutdown();
}

/// Leaves a worker, inside a read, with the only reference to its file.
void leaveFileToItsWorker() {
    tiny::onRead = [] { gate.pass(); };
    tiny::FilePtr const file(new WatchedSound(L"/dev/null", DecodeFormat(), OpenType::audio));
    tiny::SoundRequestPtr const request = tiny::askSound(file, 0);
    static_cast<void>(gate.waitForArrivals(1));
}

void readAnother() {
    gate.open();
    fileGone.pass();
    tiny::SoundRequestPtr const another = tiny::askSound(tiny::openSound(), 0);
    tiny::awaitSound(another);
    tiny::say(tiny::statusOf(another));
}

void releaseOnWorker() {
    leaveFileToItsWorker();
    readAnother();
}

void releaseOnWorkerWithPoolShut() {
    leaveFileToItsWorker();
    audioQueuePool().shutdown(Shutdown::normalExit);
    readAnother();
}

void releaseOnWorkerAtExit() {
    leaveFileToItsWorker();
    openGateAtShutdown();
}

/// Shuts down by hand, and goes on using what was there before and what comes new.
void useAfterShutdown() {
    tiny::FilePtr const before = tiny::openSound(L"/dev/null");
    tiny::awaitSound(tiny::askSound(before, 0));
    Shutdown::run(Shutdown::normalExit);
    tiny::SoundRequestPtr const late = tiny::askSound(before, 0);
    tiny::say("old file: " + tiny::statusOf(late));
    tiny::SoundRequestPtr const request = tiny::askSound(tiny::openSound(L"/dev/zero"), 0);
    tiny::awaitSound(request);
    tiny::say("new file: " + tiny::statusOf(request));
    tiny::say("free queues: " + std::to_string(audioQueuePool().getFreeCount()));
}

}  // namespace

int main(int, char** arguments) {
    std::map<std::string, void (*)()> const ways{
        {"main", &exitWithRequests},
        {"thread", &exitFromAnotherThread},
        {"worker", &exitFromInsideARead},
        {"dropped", &dropRequests},
        {"held", &holdARequest},
        {"release", &releaseOnWorker},
        {"release-shut", &releaseOnWorkerWithPoolShut},
        {"release-exit", &releaseOnWorkerAtExit},
        {"after", &useAfterShutdown},
    };
    ways.at(arguments[1])();
}
