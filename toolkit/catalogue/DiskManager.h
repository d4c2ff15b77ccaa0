#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxString.h"
#include "ole/os/Callback.h"
#include "toolkit/catalogue/MaterialFilename.h"

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

/// The media drives of the system, and those who listen to their changes.
///
/// Threads  Any. Listeners are called on the notifying thread without a lock held.
class DiskManager {
public:
    using Listener = iCallbackBase<int, DiskNotification>;

    [[nodiscard]] static DiskManager& instance();

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

    [[nodiscard]] Ox::Ptr<Ox::Guard> addListener(Ox::Ptr<Listener> const& listener);
    void notify(DiskNotification const& notification);
};
