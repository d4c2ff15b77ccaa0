#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "ole/Ox/OxString.h"
#include "ole/os/Callback.h"
#include "toolkit/catalogue/MaterialFilename.h"
#include "toolkit/catalogue/MediaDrive.h"

/// The kind of a notification, as a number that the dictionary hands out by name.
using NotifyMsgType = std::uint32_t;

/// Gives each name of a notification one number for the life of the process.
///
/// Threads  Any.
class NotifyMsgTypeDictionary {
public:
    [[nodiscard]] static NotifyMsgTypeDictionary& instance();
    /// The number of `name`, a new one if it wasn't known.
    [[nodiscard]] NotifyMsgType getType(char const* name);
    /// The type of every notification about drives and what lies on them.
    [[nodiscard]] NotifyMsgType getDiskChangeType() { return getType("DiskChange"); }
};

/// What a disk notification says.
struct DiskNotification {
    /// The media on the drives may have changed: whoever shows them looks again.
    static constexpr std::uint32_t mediaChanged = 3;

    std::uint32_t message = 0;
    /// The paths concerned; empty for all.
    std::vector<LightweightString<wchar_t>> paths;
    NotifyMsgType type = 0;
    /// Seconds since the media changed, 0.0 if that is this moment.
    double time = 0.0;
};

/// The media drives, and which of them serves which task.
struct DriveTable {
    /// Each with its closing separator.
    std::map<DriveId, LightweightString<wchar_t>> roots;
    std::map<std::string, DriveId> driveOfTask;
};

/// Keeps the drives beyond the life of the process.
///
/// Threads  Any. Told without a lock of the drives held, after the change; it asks for what holds by then.
class iDriveKeeper {
public:
    virtual ~iDriveKeeper() = default;
    virtual void driveChanged(DriveId const& drive) = 0;
    virtual void taskChanged(char const* task) = 0;
};

/// The media drives of the system, and those who listen to their changes.
///
/// Threads  Any. Listeners are called on the notifying thread without a lock held.
/// Units    Space in bytes, where MiB isn't said.
class DiskManager {
public:
    using Listener = iCallbackBase<int, DiskNotification>;

    [[nodiscard]] static DiskManager& instance();
    /// Puts `keeper` in force, null for none, and gives back the one before. Not owned.
    static iDriveKeeper* install(iDriveKeeper* keeper) noexcept;

    /// Says where a drive's files lie; a closing separator is added if it is missing.
    void setDriveRoot(DriveId const& drive, LightweightString<wchar_t> const& root);
    void removeDrive(DriveId const& drive);
    /// With its closing separator; empty for a drive that isn't there.
    [[nodiscard]] LightweightString<wchar_t> getDriveRoot(DriveId const& drive) const;

    /// Says which drive new files of a task ("render", "import") go to.
    void setDriveForTask(char const* task, DriveId const& drive);
    /// The drive for a task: the one that was named, else the first there is, else none.
    ///
    /// @param option  always true
    [[nodiscard]] DriveId getDriveForTask(char const* task, bool option) const;

    /// All drives, in the order of their letters.
    [[nodiscard]] std::vector<Ox::Ptr<MediaDrive>> getDrives() const;
    /// Empty for a drive that isn't there.
    [[nodiscard]] Ox::Ptr<MediaDrive> getDriveWithUniqueId(DriveId const& drive) const;
    /// What may still be recorded on a drive, in MiB; 0.0 for one that isn't there.
    [[nodiscard]] double getSpaceForRecording(DriveId const& drive) const;
    [[nodiscard]] bool isMaterialVolume(DriveId const& drive) const;
    /// What stands before the path of a file on the drive: its root, with the closing separator; empty for a drive
    /// that isn't there. @param option  always false
    [[nodiscard]] LightweightString<wchar_t> getMaterialVolumeName(DriveId const& drive, bool option) const;

    [[nodiscard]] DriveTable getTable() const;
    /// Puts another table in place of all drives and tasks, untold to the keeper, and gives back the one before.
    DriveTable exchangeTable(DriveTable const& table);

    [[nodiscard]] Ox::Ptr<Ox::Guard> addListener(Ox::Ptr<Listener> const& listener);
    void notify(DiskNotification const& notification);
};
