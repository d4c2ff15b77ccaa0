#pragma once

#include <cstdint>
#include <vector>

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/FsysDirectoryEntry.h"
#include "toolkit/tasks/LoggerHandle.h"

/// A file and the bytes that it had when the list was made.
struct MediaFileInfoEx : MediaFileInfo {
    std::uint64_t fileSize = 0;
};

/// All the files of one clip that may be relocated: its own before its proxies, in the order of the list.
struct LogicalMediaFile {
    std::vector<MediaFileInfoEx> files;
    /// Empty for a clip that the catalogue doesn't know.
    Ox::Ptr<FsysDirectoryEntry> entry;
    Cookie cookie;
};

/// Copies or moves material from drive to drive. Only the drive changes, never the path on it.
///
/// Threads    The caller's, which waits until all is done. `g_esc_pressed` ends the work between two clips.
/// Errors     Lines in the log; what fails doesn't keep the rest from being done.
/// Deliberate There is no temporary name here, and what is at the target is left: a half file of a run that was killed
///            is passed over by the next one. Space for exactly what is needed is refused. The closing line comes
///            after an escape too.
class MaterialMove {
public:
    /// What becomes of the source; any number but 1 means that it stays.
    enum eType : std::uint32_t { copyFiles = 0, moveFiles = 1 };

    /// The project's files that belong to clips on the drive `source`.
    ///
    /// Deliberate  Of a clip whose file lies on `source`, what enters the list are its files on other drives.
    static void relocate(DriveId const& destination, DriveId const& source, eType type, LoggerHandle handle);
    /// The files of what these items refer to.
    static void relocate(DriveId const& destination, CookieVec const& items, eType type, LoggerHandle handle);
};

/// Adds the files of all clips of the project that count to a drive.
void getMaterialFilesOnDrive(DriveId const& drive, std::vector<LogicalMediaFile>& out);
/// Adds the files of clips that don't lie on `drive`.
void getMaterialFiles(CookieVec const& items, std::vector<LogicalMediaFile>& out, DriveId drive);
/// The files of one clip that are there and not on `drive`.
[[nodiscard]] LogicalMediaFile makeLogicalMediaFile(Cookie const& cookie, DriveId drive);
/// The media that items refer to, in their order.
[[nodiscard]] CookieVec buildShotList(CookieVec const& items);
/// Relocates a list, if it fits on the destination.
void copyFiles(std::vector<LogicalMediaFile> const& files, DriveId const& destination,
               MaterialMove::eType type, LoggerHandle handle);
