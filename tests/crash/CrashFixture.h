#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace test {

/// A folder with a store of preferences, some media and the one plug-in that opens them; and processes
/// that work on them.
class CrashFixture : public testing::Test {
protected:
    using Process = std::unique_ptr<ChildProcess>;

    CrashFixture();

    /// Makes a medium; its full path.
    std::string addFile(std::string const& name);
    /// Makes opens of a file wait until it is let go.
    void hold(std::string const& file);
    void letGo(std::string const& file);
    /// From now on opens of it don't wait.
    void unhold(std::string const& file);
    /// Makes opens of a file bring their process down.
    void makeCrash(std::string const& file);

    /// Starts a process that does `what`, see the program.
    Process start(std::vector<std::string> const& what);
    /// Runs one to its end and gives its lines.
    std::vector<std::string> run(std::vector<std::string> const& what);
    /// Kills a process that is inside the open of a file.
    void killInside(std::string const& file, std::string const& type = "video");

    /// The names, without folders, of the files that are marked, as another process sees them.
    std::set<std::string> marks();
    void removeMarks();
    [[nodiscard]] bool isStoreWhole() const;

    TemporaryFolder folder;

private:
    [[nodiscard]] std::string store() const { return folder.file("preferences.db"); }
    [[nodiscard]] std::string plugins() const { return folder.file("plugins"); }
};

/// The lines of a text.
[[nodiscard]] std::vector<std::string> linesOf(std::string const& text);

}  // namespace test
