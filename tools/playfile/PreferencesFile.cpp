#include "tools/playfile/PreferencesFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "host/sqlite/SqlitePreferences.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// How a database file begins.
constexpr std::string_view databaseMark = "SQLite format 3";

/// What keeps the file from being used; empty if nothing does. A file that isn't there is made.
std::string obstacleOf(std::string const& path) {
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::absolute(path).parent_path(), error);
    if (error) {
        return error.message();
    }
    int const file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
    if (file < 0) {
        return systemErrorText(errno);
    }
    std::array<char, databaseMark.size()> begin{};
    ssize_t const byteCount = ::read(file, begin.data(), begin.size());
    ::close(file);
    bool const isEmpty = byteCount == 0;
    bool const isDatabase = std::string_view(begin.data(), begin.size()) == databaseMark;
    return isEmpty || isDatabase ? "" : "it holds something else";
}

}  // namespace

/// The check comes first: the store sets a file aside that it can't read, which must not happen to a
/// file that was named by mistake.
PreferencesFile::PreferencesFile(std::string const& path) {
    bool const isNamed = !path.empty();
    std::string const file = isNamed ? path : narrowName(defaultPreferencesPath());
    std::string const obstacle = obstacleOf(file);
    if (!obstacle.empty() && isNamed) {
        throw CommandError("cannot keep preferences in " + inQuotes(file) + ": " + obstacle +
                           "; name another file with --preferences");
    }
    if (!obstacle.empty()) {
        writeProblem("warning: cannot keep preferences in " + inQuotes(file) + ": " + obstacle +
                     "; name another file with --preferences");
        return;
    }
    preferences_ = openSqlitePreferences(wideName(file));
    former_ = installPreferences(preferences_.get());
}

PreferencesFile::~PreferencesFile() {
    if (preferences_) {
        installPreferences(former_);
    }
}

}  // namespace cli
