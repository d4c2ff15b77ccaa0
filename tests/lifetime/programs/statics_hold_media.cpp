/// Has static objects that hold an open file and a finished request, and let go of them after main.
#include "tests/lifetime/TinyMedia.h"

namespace {

struct Holder {
    ~Holder() {
        tiny::say("request: " + tiny::statusOf(request));
        tiny::say("file: " + file->getDescription().str());
    }
    tiny::FilePtr file;
    tiny::RequestPtr request;
};

Holder madeBeforeMain;

}  // namespace

int main() {
    static Holder madeBeforeTheCache;
    madeBeforeMain.file = tiny::open(L"/dev/null");
    madeBeforeTheCache.file = tiny::open(L"/dev/zero");
    static Holder madeAfterTheFiles;
    madeAfterTheFiles.file = tiny::open(L"/dev/full");
    for (Holder* holder : {&madeBeforeMain, &madeBeforeTheCache, &madeAfterTheFiles}) {
        holder->request = tiny::ask(holder->file, 1);
        tiny::await(holder->request);
    }
}
