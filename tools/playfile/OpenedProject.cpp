#include "tools/playfile/OpenedProject.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/InputFile.h"
#include "tools/playfile/ProjectSpaceOpener.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// How a database begins, and where and how it says that it is a project.
constexpr std::string_view databaseMark("SQLite format 3\0", 16);
constexpr std::size_t kindOffset = 68;
constexpr std::string_view projectKind = "PLYP";
constexpr std::size_t headerLength = kindOffset + projectKind.size();
char const* const notesExtension = "-wal";

/// A database whose file doesn't say yet what it is may say so in the notes beside it.
bool isForeign(std::string const& path) {
    std::array<char, headerLength> header{};
    std::ifstream(path, std::ios::binary).read(header.data(), header.size());
    std::string_view const text(header.data(), header.size());
    if (!text.starts_with(databaseMark)) {
        return true;
    }
    std::error_code error;
    return text.substr(kindOffset) != projectKind && !std::filesystem::exists(path + notesExtension, error);
}

/// Nothing is opened as a database that isn't a project: that alone would change it.
void requireProject(std::string const& path) {
    struct stat facts {};
    if (::stat(path.c_str(), &facts) != 0) {
        bool const isMissing = errno == ENOENT || errno == ENOTDIR;
        throw CommandError(isMissing ? "there is no project " + inQuotes(path) +
                                           "; check its name, or make it with 'playfile project create'"
                                     : "cannot look for the project " + inQuotes(path) + ": " +
                                           systemErrorText(errno) + "; check the rights to its folder");
    }
    if (S_ISDIR(facts.st_mode)) {
        throw CommandError(inQuotes(path) + " is a folder; name the file of a project");
    }
    if (!std::ifstream(path).is_open()) {
        throw CommandError("no permission to read the project " + inQuotes(path) +
                           "; change its mode or run as a user who may");
    }
    if (!S_ISREG(facts.st_mode) || isForeign(path)) {
        throw CommandError(inQuotes(path) + " is no project; name the file of one");
    }
}

std::unique_ptr<SqliteProject> openFile(std::string const& path) {
    std::string error;
    std::unique_ptr<SqliteProject> project = SqliteProject::open(wideName(path), error);
    if (!project) {
        throw CommandError(printable(error));
    }
    return project;
}

}  // namespace

OpenedProject::OpenedProject(SessionOptions const& options, std::string const& file)
    : session_(options), path_(InputFile(file).path()), project_([this] {
          requireProject(path_);
          return openFile(path_);
      }()) {
    project_->spaces().setOpener(ProjectSpaceOpener(stores_.spaces()));
    project_->install();
}

OpenedProject::~OpenedProject() {
    project_->uninstall();
}

std::unique_ptr<SqliteProject> OpenedProject::create(std::string const& file) {
    std::string const path = InputFile(file).path();
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, error)) &&
        !(std::filesystem::is_regular_file(path, error) && std::filesystem::file_size(path, error) == 0)) {
        throw CommandError("there is already a file " + inQuotes(path) + "; choose another name");
    }
    return openFile(path);
}

void OpenedProject::refuseChange() const {
    std::vector<std::string> const lines = session_.log().lines();
    throw CommandError(lines.empty() ? "the project " + inQuotes(path_) +
                                           " can't be changed; make room on its drive or allow writing there"
                                     : printable(lines.back()));
}

}  // namespace cli
