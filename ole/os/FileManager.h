#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"

/// An open file.
///
/// Threads  One at a time.
/// Units    Sizes and positions are bytes.
class iFile : public virtual iObject {
public:
    /// What may lie there before: 0 opens only a file that exists.
    enum eOpenBehaviour : std::uint32_t { existingOnly = 0, createAlways = 1, openOrCreate = 2 };
    /// What others may do meanwhile: 1 lets them open the file too.
    enum eShareMode : std::uint32_t { exclusive = 0, shared = 1 };
    /// Access is a mask.
    static constexpr std::uint32_t readAccess = 1;
    static constexpr std::uint32_t writeAccess = 2;

    /// The bytes read, fewer than asked for at the end of the file or on an error.
    virtual std::uint32_t read(void* buffer, std::uint32_t byteCount) = 0;
    /// The bytes written, fewer than asked for on an error.
    virtual std::uint32_t write(void const* buffer, std::uint32_t byteCount) = 0;
    /// Moves to an absolute offset; false if the system refuses it.
    virtual bool setPosition(std::uint64_t offset) = 0;
    [[nodiscard]] virtual std::uint64_t getPosition() const = 0;
};

/// The volume that holds a file.
class iVolume : public virtual iObject {
public:
    /// The unit in which it is best read and written, in bytes.
    [[nodiscard]] virtual std::uint32_t getBlockSize() const = 0;
    /// What may still be written on it at this moment, in bytes; 0 if that isn't known.
    [[nodiscard]] virtual std::uint64_t getFreeBytes() const = 0;
};

/// A place on other machines that holds files, as far as names are concerned.
class iRemoteStore {
public:
    virtual ~iRemoteStore() = default;
    /// How people call what lies under `name`.
    [[nodiscard]] virtual LightweightString<wchar_t> getDisplayName(
        LightweightString<wchar_t> const& name) = 0;
};

/// Every file operation of the library goes through this interface.
///
/// Threads  Any. All operations may block for as long as the file system does.
/// Errors   As each operation says; the reason is the OS object's last error.
class iFileManager {
public:
    /// The outcome of a copy.
    enum eCopyRC : std::uint32_t {
        copied = 0,
        copyNoFolder = 1,       ///< not from `copyFile`: the folder can't be made
        copyCannotAccess = 2,   ///< the source can't be read or the destination not be made
        copyStopped = 3,        ///< the callback said so
        copyFailed = 4,         ///< no space, or an error on the way
        copyNoDestination = 5,  ///< not from `copyFile`: the destination is empty
    };

    /// Told of a copy's progress on the calling thread; 0 stops the copy.
    using CopyProgress = int (*)(void* context, unsigned long copiedBytes, unsigned long totalBytes);

    /// One entry of a folder.
    struct DirectoryItem {
        /// The full path from `getFileInfo`, the bare name from `findFiles`.
        LightweightString<wchar_t> name;
        /// The host's own word; of the POSIX host the file's type and mode.
        std::uint32_t attributes = 0;
        std::uint64_t size = 0;
        /// Nanoseconds since 1970; 0 if not known.
        std::uint64_t created = 0;
        std::uint64_t modified = 0;
    };

    virtual ~iFileManager() = default;

    /// Copies a file, and makes the folders in which it comes to lie; `replaceExisting` false makes an existing destination a failure (2). The
    /// destination is flushed to its device before the answer `copied`. A copy that fails or is stopped
    /// leaves no half destination behind. A link at the destination isn't followed: it makes the copy
    /// fail (2). A copy of a file onto itself is done already.
    [[nodiscard]] virtual eCopyRC copyFile(LightweightString<wchar_t> const& source,
                                           LightweightString<wchar_t> const& destination,
                                           bool replaceExisting, CopyProgress progress, void* context) = 0;
    /// `replaceExisting` false makes an existing target a failure.
    [[nodiscard]] virtual bool renameFile(LightweightString<wchar_t> const& from,
                                          LightweightString<wchar_t> const& to, bool replaceExisting) = 0;
    virtual bool deleteFile(LightweightString<wchar_t> const& path) = 0;
    [[nodiscard]] virtual bool fileExists(LightweightString<wchar_t> const& path) = 0;
    /// True if the path names a place in a remote store and not in a file system of this machine.
    [[nodiscard]] virtual bool isRemote(LightweightString<wchar_t> const& path) = 0;
    /// What is there; `size` is 0 for a missing file and for a folder.
    [[nodiscard]] virtual DirectoryItem getFileInfo(LightweightString<wchar_t> const& path) = 0;
    /// Makes a folder and those above it; true also if it exists already.
    [[nodiscard]] virtual bool createDirectory(LightweightString<wchar_t> const& path) = 0;
    [[nodiscard]] virtual wchar_t getPathSeparator() const = 0;

    /// Opens a file; empty on failure.
    ///
    /// @param access     mask of `iFile::readAccess` and `iFile::writeAccess`
    /// @param behaviour  an `iFile::eOpenBehaviour`
    /// @param share      an `iFile::eShareMode`; it binds those who open files through this system
    /// @param option     always 0
    [[nodiscard]] virtual Ox::Ptr<iFile> openFile(LightweightString<wchar_t> const& name,
                                                  std::uint32_t access, std::uint32_t behaviour,
                                                  std::uint32_t share, std::uint32_t option = 0) = 0;
    /// The volume that holds the file; empty for a path whose volume isn't known.
    [[nodiscard]] virtual Ox::Ptr<iVolume> getVolume(LightweightString<wchar_t> const& path) = 0;
    /// Bytes; 0 for a missing file.
    [[nodiscard]] virtual std::uint64_t getFileSize(LightweightString<wchar_t> const& path) = 0;
    /// The name as the system sees it once its volume is mounted.
    [[nodiscard]] virtual LightweightString<wchar_t> getMountedFilename(
        LightweightString<wchar_t> const& name) = 0;
    /// The name made fit for display: path and extension kept, control characters replaced.
    [[nodiscard]] virtual LightweightString<wchar_t> getDisplayFilename(
        LightweightString<wchar_t> const& name) = 0;
    /// Adds what lies in a folder to `items`, in the order of the names.
    ///
    /// @param pattern  a folder and a name in it, or a beginning of names with ".*" behind it: every name that
    ///                 goes on after the full stop. No other character stands for others.
    /// @param files    takes what isn't a folder
    /// @param folders  takes folders
    virtual void findFiles(LightweightString<wchar_t> const& pattern, std::vector<DirectoryItem>& items,
                           bool files, bool folders) = 0;
    /// Who serves a remote name; null if nobody does. It isn't owned, and lives as long as the process.
    [[nodiscard]] virtual iRemoteStore* findRemoteStore(LightweightString<wchar_t> const& /*name*/) {
        return nullptr;
    }
};

/// Puts `manager` in force for the whole process, null for the host's own, and gives back the one
/// before, null for the host's own. It isn't owned and must live until it is replaced and nobody is inside it.
iFileManager* installFileManager(iFileManager* manager) noexcept;
