/// Ends in the way that the argument names while files are being opened ahead of need: "held", "dropped",
/// "worker" (from inside an open), "closed" (after the exit of the library), "initialised" (by a process that began with
/// the library's start).
#include <cstdlib>
#include <map>
#include <string>

#include "host/memory/MemoryCatalogue.h"
#include "playfile/playfile.h"
#include "tests/fakes/Gate.h"
#include "tests/lifetime/TinyMedia.h"
#include "toolkit/services/Settings.h"
#include "video/FilePreOpen.h"

namespace {

using Ahead = Ox::Ptr<Ox::PreOpenRequest>;

std::atomic<int> filesOpened{0};
/// Workers may wait at it while the process ends, so it is never destroyed.
Gate& gate = *new Gate(false);
std::function<void()> onOpen = [] { gate.pass(); };

/// Says, as a static object of the program, what was opened before it went.
struct CountsAtTheEnd {
    ~CountsAtTheEnd() { tiny::say("files opened: " + std::to_string(filesOpened)); }
} const countsAtTheEnd;

class SlowReader : public tiny::Reader {
public:
    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) override {
        onOpen();
        ++filesOpened;
        return tiny::Reader::openFile(filename, format, type);
    }
};

/// Asks for three files, of which one at least is being opened when it returns.
std::vector<Ahead> openAhead() {
    Ox::FileReaderInfo::add(Ox::makePtr<SlowReader>(), 1);
    std::vector<Ahead> requests;
    for (wchar_t const* const name : {L"/dev/null", L"/dev/zero", L"/dev/full"}) {
        Cookie const clip(Ox::UUID::generate(), 'V', 0);
        MemoryCatalogue::instance().add(clip, name);
        requests.push_back(Ox::PreOpenRequest::create(clip, DecodeFormat(), 0));
    }
    return requests;
}

void openGateAtShutdown() {
    static_cast<void>(gate.waitForArrivals(1));
    tiny::atShutdown(400, [] {
        tiny::say("shutdown");
        gate.open();
    });
}

void exitWithRequests() {
    static std::vector<Ahead> held;
    held = openAhead();
    openGateAtShutdown();
    std::exit(0);
}

void returnWithDroppedRequests() {
    static_cast<void>(openAhead());
    openGateAtShutdown();
}

/// The only worker ends the process, when nobody asks for files any more.
void exitFromInsideAnOpen() {
    setConfigInt("numReaderThreads", 1);
    static Gate& hasAsked = *new Gate(false);
    onOpen = [] {
        hasAsked.pass();
        std::exit(0);
    };
    static std::vector<Ahead> held;
    held = openAhead();
    hasAsked.open();
    Gate never(false);
    never.pass();
}

void exitTheLibraryMeanwhile() {
    std::vector<Ahead> const requests = openAhead();
    static_cast<void>(gate.waitForArrivals(1));
    playfile_exit();
    openGateAtShutdown();
}

/// The service is older than the cache here, and nothing else sees to it that it is stopped first.
void returnAfterTheStart() {
    playfile_init();
    static std::vector<Ahead> held;
    held = openAhead();
    static_cast<void>(gate.waitForArrivals(1));
    std::atexit([] { gate.open(); });
}

}  // namespace

int main(int, char** arguments) {
    std::map<std::string, void (*)()> const ways{
        {"held", &exitWithRequests},           {"dropped", &returnWithDroppedRequests},
        {"worker", &exitFromInsideAnOpen},     {"closed", &exitTheLibraryMeanwhile},
        {"initialised", &returnAfterTheStart},
    };
    ways.at(arguments[1])();
}
