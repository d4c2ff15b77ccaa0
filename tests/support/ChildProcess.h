#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace test {

/// How a program ended.
struct Ending {
    /// -1 if a signal ended it.
    int exitCode = -1;
    /// The signal that ended it, 0 for none.
    int signal = 0;
    /// True if it was killed because it didn't end in time.
    bool isOverdue = false;
    std::string output;
    std::string errors;
};

/// A program that a test starts, listens to, and kills or sees end.
///
/// Ownership  What still runs at the end of the object is killed.
/// Threads    One at a time.
class ChildProcess {
public:
    /// Starts a program of the tests by its name, or any other by its path.
    ///
    /// @param settings  "NAME=value", added to the environment
    explicit ChildProcess(std::string const& program, std::vector<std::string> const& arguments = {},
                          std::vector<std::string> const& settings = {});
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    /// Waits for the next whole line of its output; empty if it ended before.
    [[nodiscard]] std::string readLine();
    /// Lets it die as if the machine had taken it: no handler runs.
    void kill();
    /// Waits for its end; one that takes longer than a minute is killed.
    [[nodiscard]] Ending waitForEnd();

private:
    bool readSome(int timeoutMs);

    pid_t process_ = -1;
    int outputEnd_ = -1;
    int errorFile_ = -1;
    std::string output_;
    std::size_t linesRead_ = 0;
};

}  // namespace test
