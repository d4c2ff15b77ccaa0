#include "bench/support/Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace bench {

bool runProgram(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t child = -1;
    int status = -1;
    return posix_spawnp(&child, arguments.front(), nullptr, nullptr, arguments.data(), environ) == 0 &&
           waitpid(child, &status, 0) == child && status == 0;
}

bool isOnItsDevice(std::string const& path) {
    int const file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    bool const isFlushed = file >= 0 && fdatasync(file) == 0;
    if (file >= 0) {
        close(file);
    }
    return isFlushed;
}

}  // namespace bench
