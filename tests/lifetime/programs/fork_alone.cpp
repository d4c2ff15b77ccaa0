/// Forks while frames are being read. The child leaves without a word; the parent reads on.
#include <sys/wait.h>

#include "tests/lifetime/TinyMedia.h"

int main() {
    tiny::FilePtr const file = tiny::open();
    auto const requests = tiny::askMany(file, 0, 50);
    pid_t const child = fork();
    if (child == 0) {
        _exit(3);
    }
    int status = -1;
    waitpid(child, &status, 0);
    tiny::say("child: " + std::to_string(WEXITSTATUS(status)));
    for (tiny::RequestPtr const& request : requests) {
        tiny::await(request);
    }
    tiny::say("frames read: " + std::to_string(tiny::framesRead));
}
