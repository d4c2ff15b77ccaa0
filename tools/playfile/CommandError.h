#pragma once

#include <stdexcept>
#include <string>

namespace cli {

/// What the program answers to the shell.
enum eExitCode : int {
    exitSuccess = 0,       ///< everything that was asked for was done
    exitFailure = 1,       ///< something of it was not
    exitUsage = 2,         ///< the command line makes no sense
    exitSignalBase = 128,  ///< plus the number of the signal that ended the work
};

/// Ends a command. The message is one line that names what is wrong and what helps.
class CommandError : public std::runtime_error {
public:
    explicit CommandError(std::string const& message, int exitCode = exitFailure)
        : std::runtime_error(message), exitCode_(exitCode) {}

    [[nodiscard]] int exitCode() const { return exitCode_; }

private:
    int exitCode_;
};

/// Somebody has asked the program to stop, or nobody reads its output any more: it ends without a word.
class Stopped : public std::exception {
public:
    explicit Stopped(int signalNumber) : signalNumber_(signalNumber) {}

    [[nodiscard]] char const* what() const noexcept override { return "stopped"; }
    [[nodiscard]] int exitCode() const { return exitSignalBase + signalNumber_; }

private:
    int signalNumber_;
};

}  // namespace cli
