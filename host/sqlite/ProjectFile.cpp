#include "host/sqlite/ProjectFile.h"

#include "host/sqlite/ProjectSchema.h"
#include "ole/os/OS.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"

namespace {

/// Marks the file as a project among all databases of SQLite: "PLYP".
constexpr std::int64_t applicationId = 0x504C5950;
constexpr char const* setApplicationId = "PRAGMA application_id = 1347180880";

/// What was committed last may be lost with the power, but never the file.
constexpr char const* surviveAPowerCut = "PRAGMA synchronous=NORMAL";

std::int64_t numberOf(SqliteDatabase& database, char const* pragma) {
    SqliteStatement statement = database.prepare(pragma);
    return statement && statement.step() == SQLITE_ROW ? statement.number(0) : -1;
}

bool isEmptyFile(SqliteDatabase& database) {
    return numberOf(database, "SELECT count(*) FROM sqlite_schema") == 0;
}

}  // namespace

std::shared_ptr<ProjectFile> ProjectFile::open(LightweightString<wchar_t> const& path, std::string& error) {
    LightweightString<wchar_t> const folder = getPath(path);
    if (!folder.empty()) {
        static_cast<void>(OS()->getFileManager().createDirectory(folder));
    }
    std::shared_ptr<ProjectFile> file(new ProjectFile(toUTF8(path).str()));
    return file->prepareSchema(error) && file->openLooks(error) ? file : nullptr;
}

ProjectFile::ProjectFile(std::string const& path) : path_(path), database_(path) {}

bool ProjectFile::prepareSchema(std::string& error) {
    std::string const name = "the project \"" + path_ + "\" can't be used: ";
    if (!database_.isOpen()) {
        error = name + database_.lastError() + "; check the file, its folder and the rights to them";
        return false;
    }
    if (!database_.run("BEGIN IMMEDIATE")) {
        error = name + database_.lastError() + "; make room on its drive or allow writing there";
        return false;
    }
    std::int64_t const version = numberOf(database_, "PRAGMA user_version");
    bool const isNew = version == 0 && isEmptyFile(database_);
    bool const isMarked = numberOf(database_, "PRAGMA application_id") == applicationId;
    bool const isProject = isNew || (isMarked && version > 0);
    bool isGood = isProject && version <= projectSchemaVersion();
    if (!isProject) {
        error = name + "it is a database of another kind; choose another file";
    } else if (!isGood) {
        error = name + "it was written by a later version; update this program";
    }
    if (isGood && isNew) {
        isGood = database_.run(setApplicationId);
    }
    isGood = isGood && migrateProject(database_, version);
    isGood = isGood && database_.run("COMMIT") && database_.run(surviveAPowerCut);
    if (!isGood) {
        error = error.empty() ? name + database_.lastError() : error;
        static_cast<void>(database_.run("ROLLBACK"));
    }
    return isGood;
}

bool ProjectFile::openLooks(std::string& error) {
    looks_.emplace(path_);
    if (!looks_->isOpen()) {
        error = "the project \"" + path_ + "\" can't be read: " + looks_->lastError();
    }
    return looks_->isOpen();
}

bool ProjectFile::change(std::string const& what, std::function<bool()> const& steps) {
    if (database_.run("BEGIN IMMEDIATE") && steps() && database_.run("COMMIT")) {
        return true;
    }
    std::string const reason = database_.lastError();
    static_cast<void>(database_.run("ROLLBACK"));
    LogBoth("The project \"%s\": %s was not written (%s); make room on its drive or allow writing there\n",
            path_.c_str(), what.c_str(), reason.c_str());
    return false;
}

void ProjectFile::look(std::function<void()> const& steps) {
    std::lock_guard const scope(lookLock);
    bool const isOneMoment = looks_->run("BEGIN");
    steps();
    if (isOneMoment) {
        static_cast<void>(looks_->run("COMMIT"));
    }
}

SqliteDatabase::Cost ProjectFile::getCost() {
    std::scoped_lock const scope(lock, lookLock);
    SqliteDatabase::Cost cost = database_.getCost();
    SqliteDatabase::Cost const looks = looks_->getCost();
    cost.fullScanSteps += looks.fullScanSteps;
    cost.machineSteps += looks.machineSteps;
    return cost;
}
