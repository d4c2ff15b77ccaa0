#include "tests/tools/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "tests/support/ProgramTexts.h"

namespace tooltest {
namespace {

struct Pipe {
    int readEnd;
    int writeEnd;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return {ends[0], ends[1]};
}

std::vector<std::string> mergedEnvironment(Process::Environment const& added) {
    std::vector<std::string> entries;
    for (char** entry = environ; *entry; ++entry) {
        std::string const text = *entry;
        if (added.count(text.substr(0, text.find('='))) == 0) {
            entries.push_back(text);
        }
    }
    for (auto const& [name, value] : added) {
        entries.push_back(name + "=" + value);
    }
    return entries;
}

/// Takes what has come; false at the end.
bool readSome(int descriptor, std::string& text) {
    std::array<char, 65536> buffer{};
    ssize_t const count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return count > 0;
}

void closeOne(int& descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

}  // namespace

Process::Process(std::vector<std::string> const& program, Environment const& environment,
                 std::string const& outPath) {
    Pipe const out = makePipe();
    Pipe const err = makePipe();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (outPath.empty()) {
        posix_spawn_file_actions_adddup2(&actions, out.writeEnd, STDOUT_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(), O_WRONLY, 0);
    }
    posix_spawn_file_actions_adddup2(&actions, err.writeEnd, STDERR_FILENO);
    std::vector<std::string> arguments(program);
    std::vector<std::string> entries = mergedEnvironment(environment);
    int const error = ::posix_spawnp(&id_, arguments[0].c_str(), &actions, nullptr,
                                     test::pointersTo(arguments).data(), test::pointersTo(entries).data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(out.writeEnd);
    ::close(err.writeEnd);
    out_ = out.readEnd;
    err_ = err.readEnd;
    if (error != 0) {
        throw std::runtime_error("cannot start " + arguments[0]);
    }
}

Process::~Process() {
    if (id_ > 0) {
        ::kill(id_, SIGKILL);
        ::waitpid(id_, nullptr, 0);
    }
    closeOne(out_);
    closeOne(err_);
}

std::string Process::readLine() {
    std::string line;
    char c = 0;
    while (::read(out_, &c, 1) == 1 && c != '\n') {
        line += c;
    }
    return line;
}

void Process::closeOutput() {
    closeOne(out_);
}

void Process::send(int signalNumber) const {
    ::kill(id_, signalNumber);
}

int Process::wait(std::string& out, std::string& err) {
    std::array<pollfd, 2> waits{{{out_, POLLIN, 0}, {err_, POLLIN, 0}}};
    while (waits[0].fd >= 0 || waits[1].fd >= 0) {
        ::poll(waits.data(), waits.size(), -1);
        if (waits[0].revents != 0 && !readSome(out_, out)) {
            waits[0].fd = -1;
        }
        if (waits[1].revents != 0 && !readSome(err_, err)) {
            waits[1].fd = -1;
        }
    }
    int status = 0;
    ::waitpid(id_, &status, 0);
    id_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace tooltest
