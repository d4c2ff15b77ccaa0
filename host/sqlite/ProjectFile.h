#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "host/sqlite/SqliteDatabase.h"
#include "ole/Ox/OxString.h"

/// The file in which a project keeps what it knows of clips and media.
///
/// Every change is one transaction: of a process that is killed all of a change is there or nothing. Several processes
/// may have the file open, and see what the others have committed; one that waits for another's change gives up after
/// ten seconds. Questions have a connection of their own, so that none of them waits for a change.
///
/// Threads      Any, under the lock that each operation names. Nobody is called back while one is held.
/// Lock order   `lock`, `lookLock`; who waits for another's change holds only the first.
/// Errors       Of a change that can't be written one line is logged, with the file, the reason and the remedy.
class ProjectFile {
public:
    /// Opens the file, made if need be; one of an earlier version is brought to this one.
    ///
    /// @return empty, with the reason and the remedy in `error`, if it can't be used. A file of a later version
    ///         and one that is no project aren't touched.
    [[nodiscard]] static std::shared_ptr<ProjectFile> open(LightweightString<wchar_t> const& path,
                                                           std::string& error);

    /// A statement for changes of this file. Requires `lock`.
    [[nodiscard]] SqliteStatement prepare(char const* sql) { return database_.prepare(sql); }
    /// A statement for questions. Requires `lookLock`.
    [[nodiscard]] SqliteStatement prepareLook(char const* sql) { return looks_->prepare(sql); }
    /// Runs `steps` as one transaction, which is undone if they answer false. Requires `lock`.
    ///
    /// @param what  is changed, for the log
    /// @return      false if nothing was changed, which is logged
    bool change(std::string const& what, std::function<bool()> const& steps);
    /// Runs `steps`, whose statements for questions all see the file as it is at one moment. Takes `lookLock`.
    void look(std::function<void()> const& steps);
    /// What the statements have cost since they were prepared. Takes both locks.
    [[nodiscard]] SqliteDatabase::Cost getCost();
    /// Whether the file's structure is sound. Takes as long as the file is large. Requires `lock`.
    [[nodiscard]] bool isWhole() { return database_.isWhole(); }

    std::mutex lock;
    std::mutex lookLock;

private:
    explicit ProjectFile(std::string const& path);
    [[nodiscard]] bool prepareSchema(std::string& error);
    [[nodiscard]] bool openLooks(std::string& error);

    std::string const path_;
    SqliteDatabase database_;
    /// For questions; there once the file is known to be a project.
    std::optional<SqliteDatabase> looks_;
};
