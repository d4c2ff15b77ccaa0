/// Ends the process from inside the call that tells of the end of a read, while more requests wait.
#include <cstdlib>

#include "tests/lifetime/TinyMedia.h"

namespace {

tiny::CountsAtTheEnd const countsAtTheEnd;

class Ending : public ReadRequestIssuer {
public:
    void requestCompleted(Ox::Ptr<iObject>&, RequestStatus) override {
        tiny::say("told");
        std::exit(0);
    }
};

}  // namespace

int main() {
    static Ending& issuer = *new Ending;
    tiny::FilePtr const file = tiny::open();
    tiny::RequestPtr const request = tiny::ask(file, 0, issuer.getProxy());
    ThreadEventPtr const never = OS()->getThreads().makeEvent(true, false, 0);
    never->wait(iThreadEvent::noTimeLimit);
}
