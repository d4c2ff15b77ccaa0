#include "bench/support/Child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>
#include <type_traits>

namespace bench {
namespace {

/// The answer is smaller than a pipe's buffer, so the child never waits for its reader.
template <class Answer>
Answer runAndAsk(std::function<Answer()> const& work) {
    static_assert(std::is_trivially_copyable_v<Answer> && sizeof(Answer) < 4096);
    Answer answer;
    int ends[2];
    if (pipe(ends) != 0) {
        std::perror("pipe");
        return answer;
    }
    std::fflush(nullptr);
    pid_t const child = fork();
    if (child == 0) {
        Answer const found = work();
        bool const isSent = write(ends[1], &found, sizeof found) == sizeof found;
        std::fflush(nullptr);
        _exit(isSent ? 0 : 1);
    }
    close(ends[1]);
    Answer received;
    if (child > 0 && read(ends[0], &received, sizeof received) == sizeof received) {
        answer = received;
    }
    close(ends[0]);
    if (child > 0) {
        waitpid(child, nullptr, 0);
    }
    return answer;
}

}  // namespace

Sample runInChild(std::function<Sample()> const& measure) {
    return runAndAsk(measure);
}

ClipFacts runInChild(std::function<ClipFacts()> const& look) {
    return runAndAsk(look);
}

SoundFacts runInChild(std::function<SoundFacts()> const& look) {
    return runAndAsk(look);
}

void measureTime(Sample& sample, std::function<bool()> const& work) {
    using Clock = std::chrono::steady_clock;
    auto const start = Clock::now();
    std::clock_t const processorStart = std::clock();
    sample.isGood = work();
    sample.processorSeconds = static_cast<double>(std::clock() - processorStart) / CLOCKS_PER_SEC;
    sample.seconds = std::chrono::duration<double>(Clock::now() - start).count();
}

std::uint64_t peakResidentBytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) {
            return std::stoull(line.substr(std::strlen("VmHWM:"))) * 1024;
        }
    }
    return 0;
}

}  // namespace bench
