#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "host/sqlite/SqliteDatabase.h"
#include "ole/Ox/OxString.h"

/// The file in which a project keeps what it knows of clips and media.
///
/// Every change is one transaction: of a process that is killed all of a change is there or nothing. Several processes
/// may have the file open, and see what the others have committed; one that waits for another's change gives up after
/// ten seconds.
///
/// Threads      Any, under `lock`, which is innermost: nobody is called back while it is held.
/// Errors       Of a change that can't be written one line is logged, with the file, the reason and the remedy.
class ProjectFile {
public:
    /// Opens the file, made if need be; one of an earlier version is brought to this one.
    ///
    /// @return empty, with the reason and the remedy in `error`, if it can't be used. A file of a later version
    ///         and one that is no project aren't touched.
    [[nodiscard]] static std::shared_ptr<ProjectFile> open(LightweightString<wchar_t> const& path,
                                                           std::string& error);

    /// A statement for this file. Requires `lock`.
    [[nodiscard]] SqliteStatement prepare(char const* sql) { return database_.prepare(sql); }
    /// Runs `steps` as one transaction, which is undone if they answer false. Requires `lock`.
    ///
    /// @param what  is changed, for the log
    /// @return      false if nothing was changed, which is logged
    bool change(std::string const& what, std::function<bool()> const& steps);
    /// Runs `steps`, which all see the file as it is at one moment, whatever other processes do; false if they
    /// couldn't be run. Requires `lock`.
    bool look(std::function<void()> const& steps);
    /// What its statements have cost since they were prepared. Requires `lock`.
    [[nodiscard]] SqliteDatabase::Cost getCost() const { return database_.getCost(); }
    /// Whether the file's structure is sound. Takes as long as the file is large. Requires `lock`.
    [[nodiscard]] bool isWhole() { return database_.isWhole(); }

    std::mutex lock;

private:
    explicit ProjectFile(std::string const& path);
    [[nodiscard]] bool prepareSchema(std::string& error);

    std::string const path_;
    SqliteDatabase database_;
};
