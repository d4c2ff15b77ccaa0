#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace tooltest {

/// A program that runs beside the test; its output comes through pipes.
///
/// Ownership  One that still runs at the end is killed.
class Process {
public:
    using Environment = std::map<std::string, std::string>;

    /// @param environment  set on top of the test's own
    /// @param outPath      where its standard output goes instead of to the test; empty for the pipe
    Process(std::vector<std::string> const& program, Environment const& environment,
            std::string const& outPath = "");
    ~Process();
    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    /// The next line of its standard output, without its end; what is left if there is no full one.
    [[nodiscard]] std::string readLine();
    /// Stops listening to its standard output.
    void closeOutput();
    void send(int signalNumber) const;

    /// Reads all that it still writes and waits for its end; the exit code as the shell would show it.
    int wait(std::string& out, std::string& err);

private:
    pid_t id_ = -1;
    int out_ = -1;
    int err_ = -1;
};

}  // namespace tooltest
