#include "host/sqlite/SqliteDrives.h"

#include "host/sqlite/StatementRun.h"
#include "toolkit/services/Paths.h"

namespace {

std::string textOf(DriveId const& drive) {
    return std::string(1, drive.letter());
}

DriveId driveOf(LightweightString<char> const& text) {
    return text.empty() ? DriveId() : DriveId(text[0]);
}

}  // namespace

DriveTable SqliteDrives::load() {
    DriveTable table;
    file_->look([&] {
        SqliteStatement drives = file_->prepareLook("SELECT letter, root FROM drives ORDER BY letter");
        for (StatementRun rows(drives); rows.nextRow();) {
            table.roots[driveOf(rows.text(0))] = rows.wideText(1);
        }
        SqliteStatement tasks = file_->prepareLook("SELECT task, letter FROM drive_tasks");
        for (StatementRun rows(tasks); rows.nextRow();) {
            table.driveOfTask[rows.text(0).str()] = driveOf(rows.text(1));
        }
    });
    return table;
}

bool SqliteDrives::setDriveRoot(DriveId const& drive, LightweightString<wchar_t> const& root) {
    std::lock_guard const scope(file_->lock);
    return file_->change("the drive " + textOf(drive), [&] {
        if (root.empty()) {
            SqliteStatement remove = file_->prepare("DELETE FROM drives WHERE letter = ?1");
            return remove && StatementRun(remove).with(textOf(drive)).isDone();
        }
        LightweightString<wchar_t> const folder = joinPaths(root, LightweightString<wchar_t>());
        SqliteStatement put = file_->prepare("INSERT OR REPLACE INTO drives (letter, root) VALUES (?1, ?2)");
        return put && StatementRun(put).with(textOf(drive)).with(folder).isDone();
    });
}

bool SqliteDrives::setDriveForTask(char const* task, DriveId const& drive) {
    std::lock_guard const scope(file_->lock);
    return file_->change(std::string("the drive for the task ") + task, [&] {
        SqliteStatement put =
            file_->prepare("INSERT OR REPLACE INTO drive_tasks (task, letter) VALUES (?1, ?2)");
        return put && StatementRun(put).with(std::string_view(task)).with(textOf(drive)).isDone();
    });
}

void SqliteDrives::driveChanged(DriveId const& drive) {
    std::lock_guard const scope(lock_);
    setDriveRoot(drive, DiskManager::instance().getDriveRoot(drive));
}

void SqliteDrives::taskChanged(char const* task) {
    std::lock_guard const scope(lock_);
    setDriveForTask(task, DiskManager::instance().getDriveForTask(task, true));
}
