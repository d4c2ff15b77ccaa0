#include "tools/playfile/Output.h"

#include <cerrno>
#include <csignal>
#include <cstdio>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {

void writeLine(std::string const& line) {
    writeText(line + '\n');
}

void writeText(std::string const& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) {
        return;
    }
    if (errno == EPIPE) {
        throw Stopped(SIGPIPE);
    }
    throw CommandError("cannot write to standard output: " + systemErrorText(errno) +
                       "; send it somewhere else");
}

void writeProblem(std::string const& message) {
    std::string const text = "playfile: " + message + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace cli
