#include "tests/support/ThreadState.h"

#include <fstream>
#include <string>
#include <thread>

namespace test {
namespace {

bool isRunning(int thread) {
    std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string number;
    std::string name;
    char state = 0;
    return (stat >> number >> name >> state) && (state == 'R' || state == 'D');
}

}  // namespace

void waitForSleep(std::atomic<int> const& thread) {
    while (thread == 0 || isRunning(thread)) {
        std::this_thread::yield();
    }
}

}  // namespace test
