/// Notes events in the trace and ends in the way that the argument names: "exit", "killed" or "fork".
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "playfile/Trace.h"

namespace {

void note(char const* name, int count) {
    for (int i = 0; i < count; ++i) {
        TraceSlice const slice("test", name);
    }
}

/// More than a thread keeps, so that some are written; then waits for the end.
void waitToBeKilled() {
    note("written", 2000);
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        pause();
    }
}

void noteInAForkedProcess() {
    note("of the parent", 10);
    pid_t const child = fork();
    if (child == 0) {
        note("of the child", 2000);
        std::exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    std::printf("child: %d\n", status);
}

}  // namespace

int main(int, char** arguments) {
    std::string_view const how(arguments[1]);
    if (how == "killed") {
        waitToBeKilled();
    } else if (how == "fork") {
        noteInAForkedProcess();
    } else {
        note("before the end", 10);
    }
}
