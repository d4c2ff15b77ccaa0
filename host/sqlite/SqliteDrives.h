#pragma once

#include <memory>
#include <mutex>

#include "host/sqlite/ProjectFile.h"
#include "toolkit/catalogue/DiskManager.h"

/// The media drives of a project on disk, and the tasks that they serve. In force as the keeper of `DiskManager` it
/// writes down each change, of that drive or task alone.
///
/// Threads     Any.
/// Lock order  `lock_`, so that the last who writes knows of all changes; then one of the file's lock and the drives'.
/// Errors      What can't be written is logged.
class SqliteDrives final : public iDriveKeeper {
public:
    explicit SqliteDrives(std::shared_ptr<ProjectFile> file) : file_(std::move(file)) {}

    /// As the file has it.
    [[nodiscard]] DriveTable load();
    /// @param root  empty takes the drive away
    bool setDriveRoot(DriveId const& drive, LightweightString<wchar_t> const& root);
    bool setDriveForTask(char const* task, DriveId const& drive);

    void driveChanged(DriveId const& drive) override;
    void taskChanged(char const* task) override;

private:
    std::mutex lock_;
    std::shared_ptr<ProjectFile> const file_;
};
