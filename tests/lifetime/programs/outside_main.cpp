/// Uses the services of the system, the log, the settings and the preferences before main and after it.
#include "tests/lifetime/TinyMedia.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Preferences.h"
#include "toolkit/services/Settings.h"

namespace {

int setTheEvent(void* event) {
    static_cast<iThreadEvent*>(event)->set();
    return 0;
}

bool doesAThreadRun() {
    ThreadEventPtr const event = OS()->getThreads().makeEvent(false, false, 0);
    ThreadDescription description;
    description.entry = &setTheEvent;
    description.argument = event.get();
    Ox::Ptr<iThread> const thread = OS()->getThreads().makeThread(description);
    return event->wait(iThreadEvent::noTimeLimit) == iThreadEvent::signalled &&
           thread->waitForEnd(iThread::noTimeLimit);
}

void useEverything(char const* when) {
    LightweightString<char> text(when);
    text += LightweightString<char>(": ");
    void* const block = OS()->getMemory().allocate(100);
    OS()->getMemory().release(block);
    prefs()->setPreference("outside main", true);
    bool const isKept = prefs()->getPreference("outside main", false);
    bool const isThere = OS()->getFileManager().fileExists(L"/dev/null");
    int const setting = config_int("numReaderThreads", 4, 0, 100);
    Log("%s", text.c_str());
    bool const isAllWell = isKept && isThere && setting == 4 && doesAThreadRun();
    tiny::say(text.str() + (isAllWell ? "all well" : "something is wrong"));
}

struct OutsideMain {
    OutsideMain() { useEverything("before main"); }
    ~OutsideMain() { useEverything("after main"); }
} const outsideMain;

}  // namespace

int main() {
    tiny::RequestPtr const request = tiny::ask(tiny::open(), 1);
    tiny::await(request);
    tiny::say(tiny::statusOf(request));
}
