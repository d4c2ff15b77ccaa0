#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <system_error>

#include "tests/support/ProgramTexts.h"

namespace test {
namespace {

constexpr std::chrono::seconds patience{60};
constexpr int pollMs = 200;

std::string pathOf(std::string const& program) {
    return program.find('/') == std::string::npos ? PLAYFILE_TEST_PROGRAM_DIR "/prog_" + program : program;
}

[[noreturn]] void fail(int error, char const* what) {
    throw std::system_error(error, std::generic_category(), what);
}

std::string wholeFile(int file) {
    std::string text;
    std::array<char, 4096> part{};
    lseek(file, 0, SEEK_SET);
    for (ssize_t count = 0; (count = read(file, part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

ChildProcess::ChildProcess(std::string const& program, std::vector<std::string> const& arguments,
                           std::vector<std::string> const& settings) {
    std::string const path = pathOf(program);
    std::vector<std::string> argumentTexts{path};
    argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment(settings);
    for (char** entry = environ; *entry; ++entry) {
        environment.emplace_back(*entry);
    }
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail(errno, "pipe");
    }
    outputEnd_ = ends[0];
    errorFile_ = memfd_create("errors", MFD_CLOEXEC);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errorFile_, STDERR_FILENO);
    int const error = posix_spawn(&process_, path.c_str(), &actions, nullptr,
                                  pointersTo(argumentTexts).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error != 0) {
        process_ = -1;
        fail(error, path.c_str());
    }
}

ChildProcess::~ChildProcess() {
    if (process_ != -1) {
        kill();
        waitpid(process_, nullptr, 0);
    }
    close(outputEnd_);
    close(errorFile_);
}

/// False at the end of the output.
bool ChildProcess::readSome(int timeoutMs) {
    pollfd wanted{outputEnd_, POLLIN, 0};
    if (poll(&wanted, 1, timeoutMs) <= 0) {
        return true;
    }
    std::array<char, 4096> part{};
    ssize_t const count = read(outputEnd_, part.data(), part.size());
    if (count > 0) {
        output_.append(part.data(), static_cast<std::size_t>(count));
    }
    return count > 0;
}

std::string ChildProcess::readLine() {
    auto const deadline = std::chrono::steady_clock::now() + patience;
    std::size_t end = 0;
    while ((end = output_.find('\n', linesRead_)) == std::string::npos) {
        if (std::chrono::steady_clock::now() > deadline || !readSome(pollMs)) {
            return {};
        }
    }
    std::string const line = output_.substr(linesRead_, end - linesRead_);
    linesRead_ = end + 1;
    return line;
}

void ChildProcess::kill() {
    if (process_ != -1) {
        ::kill(process_, SIGKILL);
    }
}

Ending ChildProcess::waitForEnd() {
    Ending ending;
    auto const deadline = std::chrono::steady_clock::now() + patience;
    while (readSome(pollMs)) {
        if (std::chrono::steady_clock::now() > deadline) {
            ending.isOverdue = true;
            kill();
        }
    }
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    ending.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    ending.output = output_;
    ending.errors = wholeFile(errorFile_);
    return ending;
}

}  // namespace test
